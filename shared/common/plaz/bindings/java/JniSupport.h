#pragma once

#include "support/HSTVector.h"

#include <cstdint>
#include <jni.h>
#include <string>
#include <type_traits>

/// How values, failures and calls cross between Java and the hub.
namespace jni {

/// The kinds of failures that the binding itself finds.
enum class Failure { memory, io, runtime, index, arithmetic, argument, nullPointer, unknown };

/// A failure on its way to becoming a Java exception of that kind.
struct JavaFailure {
    Failure kind;
    std::string text;
};

/// The class of Java's own that stands for a kind.
const char* classOf(Failure kind);
/// Throws an exception of that class in Java, unless one is on its way. What is thrown is seen once the native function
/// returns.
void throwJava(JNIEnv* env, const char* className, const std::string& text);
/// Turns the C++ exception that is being handled into one of Java.
void throwCurrent(JNIEnv* env);

/// A Java string in UTF-8.
/// @param complaint  the text of the NullPointerException for null
/// @throws JavaFailure
std::string toNative(JNIEnv* env, jstring text, const char* complaint = "null std::string");
/// Null, with an exception on its way, when Java's memory is exhausted.
jstring toJava(JNIEnv* env, const std::string& text);

inline jboolean toJava(JNIEnv*, bool value) {
    return value ? JNI_TRUE : JNI_FALSE;
}
inline jdouble toJava(JNIEnv*, double value) {
    return value;
}
inline jint toJava(JNIEnv*, std::int32_t value) {
    return value;
}
/// Times and sizes.
template <typename Number>
std::enable_if_t<std::is_same_v<Number, long> || std::is_same_v<Number, std::size_t>, jlong> toJava(JNIEnv*,
                                                                                                    Number value) {
    return static_cast<jlong>(value);
}
template <typename Enum> std::enable_if_t<std::is_enum_v<Enum>, jint> toJava(JNIEnv*, Enum value) {
    return static_cast<jint>(value);
}
/// The address; whoever owns the object still does.
template <typename Native> jlong toJava(JNIEnv*, const Native* object) {
    return static_cast<jlong>(reinterpret_cast<std::uintptr_t>(object));
}
template <typename Element> jlong toJava(JNIEnv* env, const HSTVector<Element>& vector) {
    return toJava(env, &vector);
}
/// One that nobody owns.
template <typename Element> jlong toJava(JNIEnv* env, HSTVector<Element>&& vector) = delete;

/// The object behind a handle; null for 0.
template <typename Native> Native* at(jlong handle) {
    return reinterpret_cast<Native*>(static_cast<std::uintptr_t>(handle)); // NOLINT(performance-no-int-to-ptr)
}
/// @param type  the name of the type, for the complaint
/// @throws JavaFailure for 0
template <typename Native> Native& refer(jlong handle, const char* type) {
    if (handle == 0) throw JavaFailure{Failure::nullPointer, std::string(type) + " & reference is null"};
    return *at<Native>(handle);
}

/// Does @p work and gives Java what it answers. No C++ exception leaves: Java gets one of its own, and zero.
template <typename Work> auto guard(JNIEnv* env, Work work) noexcept {
    using Result = decltype(work());
    try {
        if constexpr (std::is_void_v<Result>)
            work();
        else
            return toJava(env, work());
    } catch (...) {
        throwCurrent(env);
    }
    if constexpr (!std::is_void_v<Result>) return decltype(toJava(env, work())){};
}

} // namespace jni
