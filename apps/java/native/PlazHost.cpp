// What a design tool does for the hub, done for a program in Java: see PlazHost.java.

#include "TclCommands.h"

#include "plaz/HSCPlazParams.h"
#include "plaz/bindings/java/JniSupport.h"
#include "scripting/task_manager.h"
#include "support/ComMsgMgr.h"
#include "support/HDGUIStatus.h"
#include "support/HUTEnv.h"
#include "support/HUTFork.h"
#include "ui_frmwork_plaz_host_PlazHost.h"

using jni::guard;

namespace {

/// Progress and cancellation of all commands.
HDGUIStatus& commandStatus() {
    static HDGUIStatus status;
    return status;
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

} // namespace

JNIEXPORT void JNICALL Java_ui_frmwork_plaz_host_PlazHost_startHub(JNIEnv* env, jclass host) {
    guard(env, [&] {
        const Listener listener(env, host);
        if (env->ExceptionCheck()) return;
        plaz_startup();
        ComMsgMgr::setSink([listener](const ComMsgMgr::Message& message) { listener.tellMessage(message); });
        commandStatus().setObserver([listener](const HDGUIStatus& status) { listener.tellProgress(status); });
        registerPlazCommands(hdi::tcltasks::task_manager::get_interp(), commandStatus());
    });
}

JNIEXPORT void JNICALL Java_ui_frmwork_plaz_host_PlazHost_begin(JNIEnv* env, jclass) {
    guard(env, [] {
        HUTFork::clearInterrupt();
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

JNIEXPORT jstring JNICALL Java_ui_frmwork_plaz_host_PlazHost_getUserDirectory(JNIEnv* env, jclass) {
    return guard(env, [] { return HUTEnv::getHDIAppDataDir(); });
}
