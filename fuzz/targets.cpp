// Every fuzz target. The name by which the program is run says which of them takes the bytes.

#include "plaz/HSCPlazMgr.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/base/HSCPlazUrl.h"
#include "plaz/bindings/HSCPlazSwigIntf.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/reader/HSCPlazConfigReader.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazLocalDBReader.h"
#include "plaz/model/reader/HSCPlazLocalDBWriter.h"
#include "plaz/model/reader/HSCPlazQItemCatalogReader.h"
#include "plaz/model/reader/HSCPlazQItemReader.h"
#include "plaz/model/reader/HSCPlazQStoreReader.h"
#include "plaz/model/reader/HSCPlazReader.h"
#include "plaz/model/repo/git/HSCPlazGitConfigText.h"
#include "plaz/model/repo/git/HSCPlazGitCredentials.h"
#include "plaz/model/repo/git/HSCPlazGitLog.h"
#include "plaz/model/repo/git/HSCPlazGitRunner.h"
#include "plaz/model/repo/git/HSCPlazGitTree.h"
#include "plaz/model/repo/git/HSCPlazGitUpdateCheck.h"
#include "plaz/pref/HSCPlazPathMgr.h"
#include "plaz/store/HSCPlazInstalledItems.h"
#include "plaz/store/HSCPlazItemTree.h"
#include "scripting/task_manager.h"
#include "scripting/tcl_text.h"
#include "support/HCCXPrefMgr.h"
#include "support/HDGUIStatus.h"
#include "support/HIOStream.h"
#include "support/HUTText.h"
#include "support/PathJudge.h"
#include "support/TempDir.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <tcl.h>

namespace {

namespace Trust = HSCPlazTrust;

[[noreturn]] void fail(const char* broken) {
    std::fprintf(stderr, "This does not hold: %s\n", broken);
    std::abort();
}

#define CHECK(...) (__VA_ARGS__) ? void() : fail(#__VA_ARGS__)

/// Takes what stands before the first null character, or all, off the front.
std::string takeField(std::string& bytes) {
    const std::string field = bytes.substr(0, bytes.find('\0'));
    bytes.erase(0, field.size() + 1);
    return field;
}

bool isFree(const std::string& text, const char* characters) {
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
    return text.find_first_of(characters) == std::string::npos && std::none_of(text.begin(), text.end(), isControl);
}

bool endsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// Readers: nothing that leads out of the store reaches a model.

bool staysInside(const std::string& path) {
    return path.empty() || PathJudge::findEscape(path).empty();
}

/// A control is shown as "?", and what stands behind that looks like a value that would be masked.
bool isMasked(const std::string& text) {
    const std::string masked = Trust::maskSecrets(text);
    const auto difference = std::mismatch(text.begin(), text.end(), masked.begin(), masked.end()).first;
    return text == masked || std::string(text.begin(), difference).find_first_of("?#") != std::string::npos;
}

void checkShown(const HSCPlazFindings& found) {
    for (const HSCPlazFinding& one : found.getAll()) CHECK(isMasked(one.text));
}

bool isForGit(const std::string& text) {
    return text.empty() || (text.front() != '-' && isFree(text, "") && text.find("ext::") != 0);
}

const rapidjson::Value& parsed(const std::string& text, HSCPlazFindings& found) {
    static HSCPlazJsonDocument document;
    document.loadText(text, "input.json", found);
    CHECK(document.isParsed() == found.isEmpty());
    return document.getRoot();
}

void hub(const std::string& text) {
    HSCPlazModel read;
    HSCPlazFindings found;
    HSCPlazReader::fill(parsed(text, found), read, found);
    for (const auto& store : read.getStores())
        CHECK(!store->getName().empty() && staysInside(store->getRoot()) && staysInside(store->getMetadataFile()) &&
              staysInside(store->getItemRoot()) && staysInside(store->getScriptRoot()) && isForGit(store->getUrl()));
    checkShown(found);
}

void config(const std::string& text) {
    HSCPlazCfgModel read;
    HSCPlazFindings found;
    const rapidjson::Value& root = parsed(text, found);
    HSCPlazConfigReader::fill(root, read);
    for (const std::string& fault : HSCPlazConfigReader::findFaults(root)) CHECK(isMasked(fault));
}

void store(const std::string& text) {
    HSCPlazQStoreModel read;
    HSCPlazFindings found;
    HSCPlazQStoreReader::fill(parsed(text, found), read, found);
    CHECK(staysInside(read.getCatalogFile()) && staysInside(read.getItemRoot()) && staysInside(read.getScriptRoot()) &&
          isForGit(read.getBranchToSync()) && isForGit(read.getCurrentBranch()) && isForGit(read.getRemote()));
    checkShown(found);
}

void catalog(const std::string& text) {
    HSCPlazQStoreModel read;
    HSCPlazFindings found;
    HSCPlazQItemCatalogReader::fill(parsed(text, found), read, found);
    for (const auto& item : read.getItems()) {
        CHECK(!item->getName().empty() && staysInside(HSCPlazPathMgr::getItemFolder(read, *item)) &&
              staysInside(item->getItemRoot()) && staysInside(item->getRoot()) &&
              staysInside(item->getMetadataFile()) && isForGit(item->getCommitId()));
        for (const auto& revision : item->getRevisions())
            CHECK(staysInside(revision.revision) && revision.revision.find('/') == std::string::npos);
    }
    checkShown(found);
}

void item(const std::string& text) {
    HSCPlazQItemModel read;
    HSCPlazFindings found;
    read.setName("led");
    HSCPlazQItemReader::fill(parsed(text, found), read, found);
    CHECK(!read.getName().empty() && staysInside(read.getLogo()) && staysInside(read.getRevision()));
    checkShown(found);
}

/// A store with what a database records of it, as a start puts it there.
void install(const std::string& database, HSCPlazQStoreModel& store) {
    static HSCPlazJsonDocument document;
    HSCPlazModel recorded;
    HSCPlazFindings found;
    document.loadText(database, "input.json", found);
    const bool isWhole = document.isParsed();
    if (!isWhole) document.loadText(HCRapidJsonReadWriteUtils::getReadablePart(database), "input.json", found);
    HSCPlazLocalDBReader::fill(document, isWhole, recorded, true, found);
    store.setName("board");
    store.setLocalRootDir("/nowhere/area");
    const HSCPlazQStoreModel* records = recorded.findStore("board");
    if (!records) return;
    std::vector<std::string> names;
    for (const auto& record : records->getItems()) names.push_back(record->getName());
    HSCPlazInstalledItems installed(store, *HSCPlazMgr::getInstance().getPathMgr(), names);
    for (const auto& record : records->getItems()) installed.apply(*record);
}

void database(const std::string& text) {
    HSCPlazQStoreModel read, again;
    install(text, read);
    for (const auto& item : read.getItems()) {
        const std::string& dir = item->getLocalDir();
        CHECK(staysInside(item->getRoot()) &&
              (dir.empty() || (dir.find("/nowhere/area/") == 0 && staysInside(dir.substr(14)))));
    }
    const std::string written = HSCPlazLocalDBWriter("1").toText(read);
    install(written, again);
    CHECK(HSCPlazLocalDBWriter("1").toText(again) == written);
}

/// Of all readers the one thing that they leave to the schemas.
void schema(const std::string& text) {
    using Kind = HSCPlazSchema::Kind;
    static HSCPlazJsonDocument document;
    HSCPlazFindings found;
    document.loadText(text, "input.json", found);
    for (const Kind kind : {Kind::plaz, Kind::qstore, Kind::qitemCatalog, Kind::qitem, Kind::localDb, Kind::config})
        document.validate(kind, found);
    CHECK(document.isParsed() || found.getAll().size() == 1);
}

// What git prints and writes.

void tree(const std::string& bytes) {
    std::string listing = HSCPlazGitTree::listIndex(bytes, "boards/aurora"), problem;
    if (listing.empty()) listing = bytes;
    const auto read = HSCPlazItemTree::parse(listing, "0123456", "boards/aurora", problem);
    CHECK(read.has_value() == problem.empty());
    if (!read) return;
    for (const auto& entry : read->getEntries())
        CHECK(entry.path.front() != '/' && ("/" + entry.path + "/").find("/../") == std::string::npos);
    const auto kept = HSCPlazItemTree::fromText(read->toText(), "0123456");
    CHECK(kept && kept->toText() == read->toText());
}

/// As git puts a value into a file.
std::string quotedByGit(const std::string& value) {
    std::string text;
    for (const char c : value) text += c == '"' || c == '\\' ? std::string("\\") + c : std::string(1, c);
    const bool needsQuotes =
        value.find_first_of(";#") != std::string::npos || value.front() == ' ' || value.back() == ' ';
    return needsQuotes ? '"' + text + '"' : text;
}

void git(const std::string& bytes) {
    for (const std::string& line : HSCPlazGitLog::getErrorLines(bytes)) {
        const std::string lowered = HUTText::lowered(line);
        CHECK(bytes.find(line) != std::string::npos && line.find('\n') == std::string::npos &&
              (lowered.find("fatal:") != std::string::npos || lowered.find("error:") != std::string::npos));
    }
    CHECK(!HSCPlazGitAnswer{1, bytes}.getReason().empty());

    std::string rest = bytes;
    const std::string log = takeField(rest), heads = takeField(rest), branch = takeField(rest);
    const auto names = [&](const std::string& head) { return heads.find("refs/heads/" + head) != std::string::npos; };
    const bool mayBeThere = !log.empty() && log.front() != '\n' && (names(branch) || names("master"));
    CHECK(mayBeThere || !HSCPlazGitUpdateCheck::isMoved(log, heads, branch));
    if (isFree(log + branch, "") && log.size() > 7)
        CHECK(HSCPlazGitUpdateCheck::isMoved(log, log + "\trefs/heads/" + branch + "\n" + heads, branch) == false);

    std::string path;
    const std::string pattern = HSCPlazGitLog::toSparsePattern(log);
    for (std::size_t i = 0; i < pattern.size(); ++i) path += pattern[i] == '\\' ? pattern[++i] : pattern[i];
    std::string expected = log;
    std::replace(expected.begin(), expected.end(), '\\', '/');
    CHECK(path == expected);
}

void settings(const std::string& text) {
    HSCPlazGitLog::findConfigValue(HSCPlazGitLog::withPlainSections(text), "http.proxy");
    if (!text.empty() && isFree(text, ""))
        CHECK(HSCPlazGitLog::findConfigValue(
                  HSCPlazGitLog::withPlainSections("[core]\n\tbare = false\n[remote \"origin\"]"
                                                   "\n\turl = " +
                                                   quotedByGit(text) + "\n"),
                  "remote_origin.url") == text);
    const auto entries = HSCPlazGitConfigText::parse("[url \"" + text + "\"]\n\tinsteadOf = x\n");
    CHECK(!entries || text.find('"') != std::string::npos || entries->back().key.rfind("url.", 0) == 0);
    for (const auto& entry : HSCPlazGitConfigText::parse(text).value_or(std::vector<HSCPlazGitConfigText::Entry>()))
        CHECK(!entry.key.empty() && entry.key.back() != '.');
}

// Names, paths and addresses.

void url(const std::string& text) {
    CHECK(HSCPlazUrl::parse(text).toText() == text);
    CHECK(!Trust::isSafeUrl(text) || isForGit(text));
    const std::string masked = Trust::maskSecrets(text), proxy = Trust::maskProxy(text);
    CHECK(Trust::maskSecrets(masked) == masked && Trust::maskProxy(proxy) == proxy);
    CHECK(text.find_first_of("@?#") != std::string::npos || (masked == text && proxy == text));
    CHECK(text.find("://") != std::string::npos || masked == text);
    if (!text.empty() && isFree(text, " \"'/"))
        CHECK(Trust::maskSecrets("see https://" + text + "@h/r for x@y") == "see https://***@h/r for x@y");

    std::string rest = text;
    const HSCPlazGitCredentials given{takeField(rest), takeField(rest)};
    const std::string access = given.putInto("https://h:1/r.git");
    const HSCPlazGitCredentials found = HSCPlazGitCredentials::inUrl(access);
    CHECK(found.userId == given.userId && found.token == given.token && Trust::isSafeUrl(access));
    CHECK(given.isEmpty() || Trust::maskSecrets("'" + access + "'") == "'https://***@h:1/r.git'");
    const std::string detected = HSCPlazGitUrl::findProxy(text);
    const std::string behindUser = "***" + detected.substr(std::min(detected.rfind('@'), detected.size()));
    const bool hasMore = behindUser.find_first_of("?#") != std::string::npos; // of which values are masked, too
    CHECK(behindUser.size() == 3 || hasMore || endsWith(Trust::maskSecrets(detected), behindUser));
}

void path(const std::string& text) {
    const std::string tidied = Trust::tidyRelativePath(text);
    CHECK(Trust::tidyRelativePath(tidied) == tidied);
    CHECK(!Trust::isSafeRelativePath(text) || tidied == text);
    CHECK(!Trust::isSafeRelativePath(tidied) || PathJudge::findEscape(tidied).empty());
    CHECK(!Trust::isSafeComponent(text) || (Trust::isSafeRelativePath(text) && text.find('/') == std::string::npos));
    CHECK(!Trust::isSafeRef(text) || (text.front() != '-' && isFree(text, " ~^:?*[\\")));
    CHECK(isFree(HUTText::printable(text), "") && HUTText::isUtf8(HUTText::repaired(text)));
}

/// A thousand paths, of which the bytes say which.
void metadata(const std::string& bytes) {
    std::seed_seq seed(bytes.begin(), bytes.end());
    std::minstd_rand random(seed);
    for (int left = 1000; left > 0; --left) {
        const std::string tidied = Trust::tidyRelativePath(PathJudge::makeNasty(random));
        CHECK(!Trust::isSafeRelativePath(tidied) || PathJudge::findEscape(tidied).empty());
    }
}

/// The commands that Tcl has run, their words with a blank between them.
std::vector<std::string> commands;

int note(ClientData /*unused*/, Tcl_Interp* interp, int count, Tcl_Obj* const* words) {
    std::string& command = commands.emplace_back();
    for (int i = 0; i < count; ++i) command += (i == 0 ? "" : " ") + hdi::tcltasks::text_of(words[i]);
    Tcl_SetObjResult(interp, Tcl_NewIntObj(1));
    return TCL_OK;
}

template <typename Action> void checkCommands(bool isRefused, const std::vector<std::string>& expected, Action act) {
    commands.clear();
    bool hasThrown = false;
    try {
        act();
    } catch (const HEXAll&) {
        hasThrown = true;
    }
    CHECK(hasThrown == isRefused);
    CHECK(commands == (isRefused ? std::vector<std::string>() : expected));
}

/// A refused text never reaches a command; any other arrives as it is.
void tcl(const std::string& text) {
    static const bool isReady = [] {
        Tcl_Interp* interp = hdi::tcltasks::task_manager::get_interp();
        Tcl_EvalEx(interp, "namespace eval plaz {}", -1, TCL_EVAL_GLOBAL);
        for (const char* name :
             {"plaz::get_qitems", "plaz::install", "set_property", "current_solvan_preferences", "unknown"})
            Tcl_CreateObjCommand(interp, name, note, nullptr, nullptr);
        return Tcl_MakeSafe(interp) == TCL_OK;
    }();
    CHECK(isReady);
    HDGUIStatus status;
    HSCPlazTypes::HSCPlazException exception;
    HSCPlazQItemModel model;
    HSCPlazQItem item;
    item.assignItem(&model);
    item.setItemName(text);
    checkCommands(!Trust::findTclNameRefusal(text).empty(), {"plaz::get_qitems " + text, "plaz::install 1"},
                  [&] { HSCPlazSwigIntf::install(&item, status, exception); });
    const std::string words = text.empty() ? " " : " " + text + " ";
    checkCommands(!Trust::findTclRefusal(text).empty(),
                  {"current_solvan_preferences", "set_property QSTORES_PATH" + words + "1"},
                  [&] { HSCPlazSwigIntf::setQStoresPath(text); });
}

// Files of the host.

void container(const std::string& bytes) {
    std::string content = HIOStream::wrap(bytes);
    CHECK(HIOStream::unwrap(content) == HIOStream::Status::ok && content == bytes);
    content = bytes;
    if (HIOStream::unwrap(content) == HIOStream::Status::ok)
        CHECK(content == bytes || HIOStream::wrap(content) == bytes);
}

void preferences(const std::string& text) {
    const auto checkKept = [](const HCCXPref& written) {
        if (!HUTText::isUtf8(written.toText())) return; // nor is it kept
        HCCXPref read;
        CHECK(read.fillFrom(written.toText()).empty() && read.getNames() == written.getNames());
        for (const std::string& name : read.getNames()) CHECK(read.getVal(name) == written.getVal(name));
    };
    HCCXPref preferences;
    if (preferences.fillFrom(text).empty()) checkKept(preferences);
    HCCXPref set;
    std::string rest = text;
    const std::string name = takeField(rest);
    set.setVal(name, {rest});
    checkKept(set);
}

constexpr struct {
    const char* name;
    void (*run)(const std::string& bytes);
} targets[] = {
    {"fuzz_hub", hub},
    {"fuzz_config", config},
    {"fuzz_store", store},
    {"fuzz_catalog", catalog},
    {"fuzz_item", item},
    {"fuzz_localdb", database},
    {"fuzz_schema", schema},
    {"fuzz_tree", tree},
    {"fuzz_git", git},
    {"fuzz_settings", settings},
    {"fuzz_url", url},
    {"fuzz_path", path},
    {"fuzz_metadata", metadata},
    {"fuzz_tcl", tcl},
    {"fuzz_container", container},
    {"fuzz_preferences", preferences},
};

void (*chosen)(const std::string& bytes) = nullptr;

/// A directory of the process's own, the product and release of the seeds, and silence.
struct Scene {
    Scene() {
        env.set("GDA_APPDATA_DIR", temp.path());
        env.set("GDA_PRODUCT_NAME", "Solvan");
        env.set("GDA_PRODUCT_VERSION", "2024.2.0");
        ComMsgMgr::setSink([](const ComMsgMgr::Message&) {});
        HSCPlazMgr::getInstance();
    }
    TempDir temp;
    EnvGuard env;
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** arguments) {
    static const Scene scene;
    const std::string program = (*arguments)[0];
    for (const auto& target : targets)
        if (program.substr(program.rfind('/') + 1) == target.name) chosen = target.run;
    if (!chosen) std::fprintf(stderr, "%s is no fuzz target\n", program.c_str());
    return chosen ? 0 : 1;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (!chosen) std::exit(1);
    chosen(std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}
