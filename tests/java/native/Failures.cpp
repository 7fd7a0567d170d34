// Fails in each way that the binding knows, for a test in Java.
#include "plaz/bindings/java/JniSupport.h"
#include "support/ComMsgMgr.h"
#include "support/HostMsg.h"
#include "ui_frmwork_plaz_Failures.h"

#include <new>
#include <stdexcept>

namespace {

[[noreturn]] void fail(const std::string& how) {
    if (how == "host") throw HEXAll(ComMsgMgrInstance("", 0, "common", HostMsg::tclFailed, "größer als 5 €"));
    if (how == "memory") throw std::bad_alloc();
    if (how == "standard") throw std::runtime_error("not for people");
    if (how.rfind("kind ", 0) != 0) throw 5;
    throw jni::JavaFailure{static_cast<jni::Failure>(std::stoi(how.substr(5))), "of kind " + how.substr(5)};
}

} // namespace

JNIEXPORT jlong JNICALL Java_ui_frmwork_plaz_Failures_fail(JNIEnv* env, jclass, jstring how) {
    return jni::guard(env, [&] {
        fail(jni::toNative(env, how));
        return std::size_t{7};
    });
}
