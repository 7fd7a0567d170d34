// What a design tool does for the hub, done for a program in Java: see PlazHost.java.

#include "Doctor.h"
#include "Failure.h"
#include "HostTexts.h"
#include "HubActions.h"
#include "HubParams.h"
#include "HubQueries.h"
#include "InputChecks.h"
#include "ItemReasons.h"
#include "ShellMsg.h"
#include "TclCommands.h"
#include "TclObjects.h"
#include "TclText.h"
#include "UserHub.h"
#include "UserSettings.h"

#include "plaz/HSCPlazInspection.h"
#include "plaz/HSCPlazParams.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazNames.h"
#include "plaz/bindings/java/JniSupport.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/HSCPlazUpdateDecision.h"
#include "scripting/task_manager.h"
#include "support/ComMsgMgr.h"
#include "support/HDGUIStatus.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"
#include "support/HUTFork.h"
#include "ui_frmwork_plaz_host_PlazHost.h"

#include <cctype>

using jni::guard;

namespace {

/// Progress and cancellation of all commands.
HDGUIStatus& commandStatus() {
    static HDGUIStatus status;
    return status;
}

/// A plan is for a person to look at; what is in its way the change itself will tell.
bool& isPlanning() {
    static bool planning = false;
    return planning;
}

/// Whether git has failed since the operation began.
bool& hasGitFailed() {
    static bool failed = false;
    return failed;
}

/// The class PlazHost, told of what the hub says and does.
class Listener {
public:
    Listener(JNIEnv* env, jclass host)
        : m_machine(machineOf(env)), m_host(static_cast<jclass>(env->NewGlobalRef(host))),
          m_message(
              env->GetStaticMethodID(host, "message", "(Ljava/lang/String;Ljava/lang/String;Ljava/lang/String;)V")),
          m_progress(m_message ? env->GetStaticMethodID(host, "progress", "(Ljava/lang/String;D)V") : nullptr) {}

    void tellMessage(const ComMsgMgr::Message& message) const {
        tell([&](JNIEnv* env) {
            jstring label = jni::toJava(env, message.label);
            jstring id = label ? jni::toJava(env, message.id) : nullptr;
            jstring text = id ? jni::toJava(env, message.text) : nullptr;
            if (text) env->CallStaticVoidMethod(m_host, m_message, label, id, text);
        });
    }
    void tellProgress(const HDGUIStatus& status) const {
        tell([&](JNIEnv* env) {
            jstring text = jni::toJava(env, status.getStatusMessage());
            if (text) env->CallStaticVoidMethod(m_host, m_progress, text, status.getPercentComplete());
        });
    }

private:
    static JavaVM* machineOf(JNIEnv* env) {
        JavaVM* machine = nullptr;
        env->GetJavaVM(&machine);
        return machine;
    }

    /// One operation tells a lot, so each telling frees the references that it makes. What Java throws must not stop
    /// the hub's work: it is written to standard error.
    template <typename Work> void tell(Work work) const {
        void* attached = nullptr;
        if (m_machine->GetEnv(&attached, JNI_VERSION_10) != JNI_OK) return; // no thread of Java's
        auto* const env = static_cast<JNIEnv*>(attached);
        if (env->PushLocalFrame(4) == JNI_OK) {
            work(env);
            env->PopLocalFrame(nullptr);
        }
        if (env->ExceptionCheck()) env->ExceptionDescribe();
    }

    JavaVM* m_machine;
    jclass m_host;
    jmethodID m_message;
    jmethodID m_progress;
};

std::vector<std::string> toNative(JNIEnv* env, jobjectArray texts) {
    std::vector<std::string> natives;
    const jsize count = env->GetArrayLength(texts);
    for (jsize i = 0; i < count; ++i) {
        auto* const text = static_cast<jstring>(env->GetObjectArrayElement(texts, i));
        natives.push_back(jni::toNative(env, text));
        env->DeleteLocalRef(text);
    }
    return natives;
}

/// Null, with an exception on its way, when Java's memory is exhausted.
jobjectArray toJava(JNIEnv* env, const std::vector<std::string>& natives) {
    jclass type = env->FindClass("java/lang/String");
    jobjectArray texts = type ? env->NewObjectArray(static_cast<jsize>(natives.size()), type, nullptr) : nullptr;
    for (jsize i = 0; texts && i < static_cast<jsize>(natives.size()); ++i) {
        jstring text = jni::toJava(env, natives[static_cast<std::size_t>(i)]);
        if (!text) return nullptr;
        env->SetObjectArrayElement(texts, i, text);
        env->DeleteLocalRef(text);
    }
    return texts;
}

std::vector<HSCPlazQItem*> resolve(const std::vector<std::string>& references) {
    const HubQueries queries(requireHub());
    if (references.empty()) return queries.findRecorded("");
    std::vector<HSCPlazQItem*> items;
    for (const std::string& reference : references)
        for (HSCPlazQItem* item : queries.resolveRevisions(requireReference(reference), "", false))
            addOnce(items, *item);
    return items;
}

template <typename Result> void require(const CommandResult<Result>& result) {
    if (commandStatus().isCanceled()) failWith(ShellMsg::cancelled);
    if (result.reason) throw ExplainedFailure(*result.reason);
    if (!result.isDone) failWith(Msg::unexpectedFailure, "no reason was given");
}

/// What cannot be fetched there is none of the hub's stores yet, and nothing that the doctor would look at.
template <typename Result> void requireBeforeDoctor(const CommandResult<Result>& result) {
    hasGitFailed() = false;
    require(result);
}

HubActions actions() {
    return {requireHub(), commandStatus(), {}};
}

/// Triples of an item, what is known of its files or of one of them, and that file or "".
/// RATIONALE: not by the Tcl command, whose objects do not tell in their text which store and revision they are of, and
/// which fails for all items when nobody knows of one what its files should be.
std::vector<std::string> compare(const std::vector<std::string>& references) {
    const FilesResult result = actions().verify(resolve(references));
    if (commandStatus().isCanceled()) failWith(ShellMsg::cancelled);
    std::vector<std::string> triples;
    for (const HSCPlazFilesResult& part : result.parts) {
        const std::string item = ItemReference{part.store, part.name, part.revision}.toText();
        const auto add = [&](const char* state, const std::string& file) {
            triples.insert(triples.end(), {item, state, file});
        };
        if (part.outcome != HSCPlazFilesResult::Outcome::damaged) add(HSCPlazFilesResult::nameOf(part.outcome), "");
        for (const auto& [state, files] : part.list())
            for (const std::string& file : *files) add(state, file);
    }
    return triples;
}

/// Triples of a fact ("inactive", "outdated", "tool", "user", "held", "needed by"), an item, and the other item or "".
std::vector<std::string> describeItems() {
    std::vector<std::string> triples;
    const auto add = [&](const char* fact, const HSCPlazQItem& item, const std::string& other) {
        triples.insert(triples.end(), {fact, ItemReference::of(item).toText(), other});
    };
    const HSCPlaz& hub = requireHub();
    for (const HSCPlazQStore* store : hub.getStores())
        for (const HSCPlazQItem* item : store->getItems()) {
            if (item->isInactive()) add("inactive", *item, "");
            if (HSCPlazUpdateDecision::isOutdated(*item)) add("outdated", *item, "");
        }
    for (const HSCPlazQItem* item : HubQueries(requireHub()).findRecorded("")) {
        add(toText(item->getMode()), *item, "");
        if (HSCPlazInspection::isHeld(*item)) add("held", *item, "");
        for (const HSCPlazQItem* holder : HSCPlazInspection::findHolders(hub, *item))
            add("needed by", *item, ItemReference::of(*holder).toText());
    }
    return triples;
}

/// URL, what chose it, the metadata file, then a line for each of the user's own stores.
std::vector<std::string> describeHub() {
    const HubInForce hub = HubInForce::of(requireHub());
    std::vector<std::string> texts{hub.url, hub.chooser, hub.metadata};
    for (const HSCPlazQStore* store : hub.stores)
        if (std::string(HubInForce::ownerOf(*store)) == "yours") texts.push_back(store->getName());
    texts.insert(texts.end(), hub.hidden.begin(), hub.hidden.end());
    return texts;
}

/// As a sentence, where there is one.
std::string findRefusal(const std::string& kind, const std::string& value) {
    std::string refusal = kind == "PROXY"        ? inputChecks::findProxyRefusal(value)
                          : kind == "URL"        ? inputChecks::findUrlRefusal(value)
                          : kind == "STORE_NAME" ? inputChecks::findStoreNameRefusal(value)
                                                 : inputChecks::findDirectoryRefusal(value);
    if (refusal.empty()) return refusal;
    refusal.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(refusal.front())));
    return refusal + ".";
}

std::vector<std::string> plan(HubActions::Change change, const std::vector<HSCPlazQItem*>& items) {
    return hostTexts::of(actions().plan(change, items).parts);
}

std::vector<std::string> plan(const std::string& kind, const std::string& reference) {
    const HubQueries queries(requireHub());
    const ItemReference wanted = requireReference(reference);
    if (kind == "INSTALL") return plan(&HubActions::install, {&queries.resolve(wanted, "")});
    if (kind == "UNINSTALL") return plan(&HubActions::uninstall, {&queries.resolveInstalled(wanted, "")});
    return plan(&HubActions::update, {&queries.resolveForUpdate(wanted, "")});
}

std::vector<std::string> planUpdates() {
    return plan(&HubActions::update, HubQueries(requireHub()).findOutdated());
}

std::vector<std::string> describe(const StoresResult& plan) {
    require(plan);
    return hostTexts::of(plan.parts);
}

/// What the user holds is passed over without a word: facts tell of it.
void updateAll() {
    const HubQueries queries(requireHub());
    const std::vector<HSCPlazQItem*> outdated = queries.findOutdated();
    if (outdated.empty() && queries.describePassedOver().empty())
        ComMsgMgr::send(ShellMsg::nothingToUpdate, MsgSeverity::info);
    const ItemsResult result = actions().update(outdated);
    for (const ComMsgMgrInstance& held : queries.describeHeld()) ComMsgMgr::send(held, MsgSeverity::info);
    require(result);
}

std::vector<std::string> findReasons(const std::string& reference) {
    HSCPlazQItem& item = HubQueries(requireHub()).resolveInstalled(requireReference(reference), "");
    return ItemReason::of(requireHub(), item).describe();
}

void addStore(const std::string& name, const std::string& url, const std::string& metadataFile, bool isOfBoards) {
    HSCPlazNewStore wanted;
    wanted.name = name;
    wanted.url = url;
    wanted.metadataFile = metadataFile;
    if (isOfBoards) wanted.type = "board";
    requireBeforeDoctor(actions().addStore(wanted));
}

/// As the program keeps it.
void setProxy(const std::string& proxy) {
    const HPAParam& param = requireParam(HSCPlazName::httpProxy);
    if (proxy.empty())
        forgetSetting(param);
    else
        keepSetting(param, proxy);
}

bool check(const std::string& name) {
    HSCPlazQStore& store = HubQueries(requireHub()).getStore(name);
    const StoresResult result = actions().check({&store});
    require(result);
    return result.parts.front().outcome == HSCPlazStoreResult::Outcome::outdated;
}

bool isHeld(const std::string& reference) {
    const HSCPlazQItem& item = HubQueries(requireHub()).resolve(requireReference(reference), "");
    return HSCPlazInspection::findHeld().count({item.getStoreName(), item.getName()}) != 0;
}

/// What @p find gives, as an array of Java's.
template <typename Find> jobjectArray answer(JNIEnv* env, Find find) {
    jobjectArray texts = nullptr;
    guard(env, [&] { texts = toJava(env, find()); });
    return texts;
}

template <typename Plan> jobjectArray answerPlan(JNIEnv* env, Plan plan) {
    isPlanning() = true;
    jobjectArray texts = answer(env, plan);
    isPlanning() = false;
    return texts;
}

/// By the Tcl command of that name.
void command(const char* name, std::vector<std::string> references) {
    references.insert(references.begin(), name);
    hdi::tcltasks::task_manager::eval_in_tcl_throw(textOf(TclRef(makeList(references)).get()), nullptr, false);
}

} // namespace

JNIEXPORT void JNICALL Java_ui_frmwork_plaz_host_PlazHost_startHub(JNIEnv* env, jclass host) {
    guard(env, [&] {
        const Listener listener(env, host);
        if (env->ExceptionCheck()) return;
        plaz_startup();
        ComMsgMgr::setSink([listener](const ComMsgMgr::Message& message) {
            hasGitFailed() |= isOfGit(message.id);
            if (!isPlanning()) listener.tellMessage(message);
        });
        commandStatus().setObserver([listener](const HDGUIStatus& status) { listener.tellProgress(status); });
        registerPlazCommands(hdi::tcltasks::task_manager::get_interp(), commandStatus());
    });
}

JNIEXPORT void JNICALL Java_ui_frmwork_plaz_host_PlazHost_begin(JNIEnv* env, jclass) {
    guard(env, [] {
        HUTFork::clearInterrupt();
        hasGitFailed() = false;
        commandStatus().setState(HDGUIStatus::running);
        commandStatus().forgetProgress();
    });
}

JNIEXPORT void JNICALL Java_ui_frmwork_plaz_host_PlazHost_cancel(JNIEnv* env, jclass) {
    guard(env, [] {
        commandStatus().cancel();
        HUTFork::interruptAll();
    });
}

JNIEXPORT void JNICALL Java_ui_frmwork_plaz_host_PlazHost_nameDoctor(JNIEnv* env, jclass) {
    guard(env, [] {
        if (hasGitFailed()) ComMsgMgr::send(ShellMsg::doctorKnows, MsgSeverity::info);
    });
}

JNIEXPORT jstring JNICALL Java_ui_frmwork_plaz_host_PlazHost_getUserDirectory(JNIEnv* env, jclass) {
    return guard(env, [] {
        HUTFile::mkDirRecursive(HUTEnv::getHDIAppDataDir()); // what Java makes has the rights that the mask lets
        return HUTEnv::getHDIAppDataDir();
    });
}

JNIEXPORT jobjectArray JNICALL Java_ui_frmwork_plaz_host_PlazHost_compare(JNIEnv* env, jclass, jobjectArray items) {
    jobjectArray triples = nullptr;
    guard(env, [&] { triples = toJava(env, compare(toNative(env, items))); });
    return triples;
}

JNIEXPORT void JNICALL Java_ui_frmwork_plaz_host_PlazHost_repair(JNIEnv* env, jclass, jobjectArray items) {
    guard(env, [&] { command("plaz::repair", toNative(env, items)); });
}

JNIEXPORT void JNICALL Java_ui_frmwork_plaz_host_PlazHost_hold(JNIEnv* env, jclass, jobjectArray items) {
    guard(env, [&] { command("plaz::hold", toNative(env, items)); });
}

JNIEXPORT void JNICALL Java_ui_frmwork_plaz_host_PlazHost_unhold(JNIEnv* env, jclass, jobjectArray items) {
    guard(env, [&] { command("plaz::unhold", toNative(env, items)); });
}

JNIEXPORT jboolean JNICALL Java_ui_frmwork_plaz_host_PlazHost_isHeld(JNIEnv* env, jclass, jstring item) {
    return guard(env, [&] { return isHeld(jni::toNative(env, item)); });
}

JNIEXPORT jobjectArray JNICALL Java_ui_frmwork_plaz_host_PlazHost_describeItems(JNIEnv* env, jclass) {
    jobjectArray triples = nullptr;
    guard(env, [&] { triples = toJava(env, describeItems()); });
    return triples;
}

JNIEXPORT jboolean JNICALL Java_ui_frmwork_plaz_host_PlazHost_check(JNIEnv* env, jclass, jstring store) {
    return guard(env, [&] { return check(jni::toNative(env, store)); });
}

JNIEXPORT jobjectArray JNICALL Java_ui_frmwork_plaz_host_PlazHost_planStores(JNIEnv* env, jclass, jobjectArray names) {
    return answer(env, [&] {
        const HubQueries queries(requireHub());
        return describe(actions().planRefresh(queries.getStores(toNative(env, names))));
    });
}

JNIEXPORT jobjectArray JNICALL Java_ui_frmwork_plaz_host_PlazHost_planHub(JNIEnv* env, jclass) {
    return answer(env, [&] { return describe(actions().planRefreshHub()); });
}

JNIEXPORT jobjectArray JNICALL Java_ui_frmwork_plaz_host_PlazHost_readHistory(JNIEnv* env, jclass) {
    return answer(env, [&] { return hostTexts::ofHistory(); });
}

JNIEXPORT void JNICALL Java_ui_frmwork_plaz_host_PlazHost_undo__(JNIEnv* env, jclass) {
    guard(env, [] { command("plaz::undo", {}); });
}

JNIEXPORT void JNICALL Java_ui_frmwork_plaz_host_PlazHost_undo__I(JNIEnv* env, jclass, jint number) {
    guard(env, [&] { command("plaz::undo", {std::to_string(number)}); });
}

JNIEXPORT jobjectArray JNICALL Java_ui_frmwork_plaz_host_PlazHost_describeHub(JNIEnv* env, jclass) {
    return answer(env, [&] { return describeHub(); });
}

JNIEXPORT jstring JNICALL Java_ui_frmwork_plaz_host_PlazHost_findRefusal(JNIEnv* env, jclass, jstring kind,
                                                                         jstring value) {
    return guard(env, [&] { return findRefusal(jni::toNative(env, kind), jni::toNative(env, value)); });
}

JNIEXPORT void JNICALL Java_ui_frmwork_plaz_host_PlazHost_chooseHub(JNIEnv* env, jclass, jstring url) {
    guard(env, [&] { requireBeforeDoctor(actions().chooseHub(jni::toNative(env, url))); });
}

JNIEXPORT void JNICALL Java_ui_frmwork_plaz_host_PlazHost_leaveHub(JNIEnv* env, jclass) {
    guard(env, [] { require(actions().leaveHub()); });
}

JNIEXPORT void JNICALL Java_ui_frmwork_plaz_host_PlazHost_addStore(JNIEnv* env, jclass, jstring name, jstring url,
                                                                   jstring metadataFile, jboolean isOfBoards) {
    guard(env, [&] {
        addStore(jni::toNative(env, name), jni::toNative(env, url), jni::toNative(env, metadataFile), isOfBoards != 0);
    });
}

JNIEXPORT void JNICALL Java_ui_frmwork_plaz_host_PlazHost_removeStore(JNIEnv* env, jclass, jstring name) {
    guard(env, [&] { require(actions().removeStore(jni::toNative(env, name))); });
}

JNIEXPORT void JNICALL Java_ui_frmwork_plaz_host_PlazHost_setProxy(JNIEnv* env, jclass, jstring proxy) {
    guard(env, [&] { setProxy(jni::toNative(env, proxy)); });
}

JNIEXPORT jstring JNICALL Java_ui_frmwork_plaz_host_PlazHost_gitVersion(JNIEnv* env, jclass) {
    return guard(env, [] {
        const HSCPlazInspection::Answer answer = HSCPlazInspection::askVersion();
        return answer.isGiven ? answer.text : answer.reason;
    });
}

JNIEXPORT jobjectArray JNICALL Java_ui_frmwork_plaz_host_PlazHost_planChange(JNIEnv* env, jclass, jstring kind,
                                                                             jstring item) {
    return answerPlan(env, [&] { return plan(jni::toNative(env, kind), jni::toNative(env, item)); });
}

JNIEXPORT jobjectArray JNICALL Java_ui_frmwork_plaz_host_PlazHost_planUpdates(JNIEnv* env, jclass) {
    return answerPlan(env, planUpdates);
}

JNIEXPORT jobjectArray JNICALL Java_ui_frmwork_plaz_host_PlazHost_planUndoOf(JNIEnv* env, jclass, jint number) {
    return answerPlan(env, [&] { return hostTexts::of(actions().planUndo(number).parts); });
}

JNIEXPORT void JNICALL Java_ui_frmwork_plaz_host_PlazHost_updateAll(JNIEnv* env, jclass) {
    guard(env, [] { updateAll(); });
}

JNIEXPORT jobjectArray JNICALL Java_ui_frmwork_plaz_host_PlazHost_findReasons(JNIEnv* env, jclass, jstring item) {
    return answer(env, [&] { return findReasons(jni::toNative(env, item)); });
}
