#include "plaz/bindings/java/JniSupport.h"

#include "support/ComMsgMgr.h"
#include "support/HI18N.h"

#include <memory>
#include <new>
#include <vector>

namespace jni {

const char* classOf(Failure kind) {
    switch (kind) {
    case Failure::memory:
        return "java/lang/OutOfMemoryError";
    case Failure::io:
        return "java/io/IOException";
    case Failure::runtime:
        return "java/lang/RuntimeException";
    case Failure::index:
        return "java/lang/IndexOutOfBoundsException";
    case Failure::arithmetic:
        return "java/lang/ArithmeticException";
    case Failure::argument:
        return "java/lang/IllegalArgumentException";
    case Failure::nullPointer:
        return "java/lang/NullPointerException";
    case Failure::unknown:
        break;
    }
    return "java/lang/UnknownError";
}

void throwJava(JNIEnv* env, const char* className, const std::string& text) {
    if (env->ExceptionCheck()) return; // what came first is the cause
    jclass type = env->FindClass(className);
    jmethodID construct = type ? env->GetMethodID(type, "<init>", "(Ljava/lang/String;)V") : nullptr;
    jstring message = construct ? toJava(env, text) : nullptr;
    jobject exception = message ? env->NewObject(type, construct, message) : nullptr;
    if (exception) env->Throw(static_cast<jthrowable>(exception)); // else Java has thrown why not
}

void throwCurrent(JNIEnv* env) {
    constexpr const char* commandFailed = "ui/frmwork/cmd/CommandFailedException";
    try {
        throw;
    } catch (const JavaFailure& failure) {
        throwJava(env, classOf(failure.kind), failure.text);
    } catch (const HEXAll& failure) {
        throwJava(env, commandFailed, failure.getMsg().getMessage());
    } catch (const std::bad_alloc&) {
        throwJava(env, "ui/frmwork/COutOfMemoryException", "Out of memory");
    } catch (...) {
        throwJava(env, commandFailed, "Unknown exception occurred");
    }
}

std::string toNative(JNIEnv* env, jstring text, const char* complaint) {
    if (!text) throw JavaFailure{Failure::nullPointer, complaint};
    const auto length = static_cast<std::size_t>(env->GetStringLength(text));
    const jchar* units = env->GetStringChars(text, nullptr);
    if (!units) throw JavaFailure{Failure::memory, "a string cannot be copied"};
    const auto release = [&](const jchar* copied) { env->ReleaseStringChars(text, copied); };
    std::unique_ptr<const jchar, decltype(release)> held(units, release);
    const std::wstring wide(units, units + length);
    held.reset();
    return HI18N::convert(wide);
}

jstring toJava(JNIEnv* env, const std::string& text) {
    const std::wstring wide = HI18N::convert(text);
    const std::vector<jchar> units(wide.begin(), wide.end());
    return env->NewString(units.data(), static_cast<jsize>(units.size()));
}

} // namespace jni
