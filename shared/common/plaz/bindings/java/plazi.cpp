// The family of functions by which the proxies of the Java package ui.frmwork.plaz reach the hub: those that its class
// plazi declares native. The header made from that class fixes each prototype.

#include "plaz/bindings/HSCPlazSwigIntf.h"
#include "plaz/bindings/java/JniSupport.h"
#include "plaz/model/HSCPlazCategory.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemDependency.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/HDGUIStatus.h"
#include "support/HSTFwdIter.h"
#include "ui_frmwork_plaz_plazi.h"

#include <utility>

using HSCPlazTypes::HSCPlazException;
using jni::at;
using jni::guard;
using jni::toNative;

namespace {

using Strings = HSTVector<std::string>;

template <typename Native> using Java = decltype(jni::toJava(nullptr, std::declval<Native>()));

/// The object that a method is called on. @throws JavaFailure for 0
template <typename Native> Native& self(jlong handle, const char* type) {
    return jni::refer<Native>(handle, type);
}

HDGUIStatus& status(jlong handle) {
    return jni::refer<HDGUIStatus>(handle, "HDGUIStatus");
}

HSCPlazException& exception(jlong handle) {
    return jni::refer<HSCPlazException>(handle, "HSCPlazTypes::HSCPlazException");
}

/// Sets a field of an exception record; a record that is null has none.
template <typename Field, typename Value>
void setField(jlong handle, Field HSCPlazException::*field, const Value& value) {
    if (auto* record = at<HSCPlazException>(handle)) record->*field = value;
}

template <typename Subject>
jboolean act(JNIEnv* env, jlong subject, jlong statusHandle, jlong exceptionHandle,
             bool (*action)(Subject*, HDGUIStatus&, HSCPlazException&)) {
    return guard(env, [&] {
        HDGUIStatus& progress = status(statusHandle);
        return action(at<Subject>(subject), progress, exception(exceptionHandle));
    });
}

} // namespace

// NOLINTBEGIN(bugprone-macro-parentheses): names, types and expressions
#define PLAZ_EXPORT(Result, name, ...)                                                                                 \
    JNIEXPORT Result JNICALL Java_ui_frmwork_plaz_plazi_##name(JNIEnv* env, __VA_ARGS__)

/// A method that answers with what the native operation of the same name gives.
#define PLAZ_GET(Class, Native, method)                                                                                \
    PLAZ_EXPORT(Java<decltype(std::declval<const Native&>().method())>, Class##_1##method, jclass, jlong handle,       \
                jobject) {                                                                                             \
        return guard(env, [&]() -> decltype(auto) { return std::as_const(self<Native>(handle, #Native)).method(); });  \
    }
/// A method that hands a text to the native operation of the same name. The text comes first: null is found before
/// anything else is done.
#define PLAZ_SET_TEXT(Class, Native, method)                                                                           \
    PLAZ_EXPORT(void, Class##_1##method, jclass, jlong handle, jobject, jstring text) {                                \
        guard(env, [&] {                                                                                               \
            const std::string value = toNative(env, text);                                                             \
            self<Native>(handle, #Native).method(value);                                                               \
        });                                                                                                            \
    }
/// A method that hands a number to the native operation of the same name.
#define PLAZ_SET(Class, Native, method, Number, native)                                                                \
    PLAZ_EXPORT(void, Class##_1##method, jclass, jlong handle, jobject, Number value) {                                \
        guard(env, [&] { self<Native>(handle, #Native).method(native); });                                             \
    }
#define PLAZ_NEW(Class, Native)                                                                                        \
    PLAZ_EXPORT(jlong, Class##_1new_1##Class, jclass) {                                                                \
        return guard(env, [] { return std::make_unique<Native>().release(); });                                        \
    }
#define PLAZ_DELETE(Class, Native)                                                                                     \
    PLAZ_EXPORT(void, Class##_1delete_1##Class, jclass, jlong handle) {                                                \
        guard(env, [&] { std::default_delete<Native>()(at<Native>(handle)); });                                        \
    }
/// A vector: @p value makes an element out of the Java arguments behind it.
#define PLAZ_VECTOR(Class, Native, value, ...)                                                                         \
    PLAZ_NEW(Class, HSTVector<Native>)                                                                                 \
    PLAZ_DELETE(Class, HSTVector<Native>)                                                                              \
    PLAZ_GET(Class, HSTVector<Native>, size)                                                                           \
    PLAZ_EXPORT(void, Class##_1clear, jclass, jlong handle, jobject) {                                                 \
        guard(env, [&] { self<HSTVector<Native>>(handle, #Class).clear(); });                                          \
    }                                                                                                                  \
    PLAZ_EXPORT(jlong, Class##_1createIter, jclass, jlong handle, jobject) {                                           \
        return guard(env, [&] {                                                                                        \
            return std::make_unique<HSTFwdIter<Native>>(self<HSTVector<Native>>(handle, #Class)).release();            \
        });                                                                                                            \
    }                                                                                                                  \
    PLAZ_EXPORT(void, Class##_1push_1back, jclass, jlong handle, jobject, __VA_ARGS__) {                               \
        guard(env, [&] {                                                                                               \
            const auto added = value;                                                                                  \
            self<HSTVector<Native>>(handle, #Class).push_back(added);                                                  \
        });                                                                                                            \
    }
#define PLAZ_POINTER_VECTOR(Class, Native) PLAZ_VECTOR(Class, Native*, at<Native>(element), jlong element, jobject)
#define PLAZ_ITERATOR(Class, Native)                                                                                   \
    PLAZ_DELETE(Class, HSTFwdIter<Native>)                                                                             \
    PLAZ_GET(Class, HSTFwdIter<Native>, hasNext)                                                                       \
    PLAZ_EXPORT(Java<Native>, Class##_1next, jclass, jlong handle, jobject) {                                          \
        return guard(env, [&] { return self<HSTFwdIter<Native>>(handle, #Class).next(); });                            \
    }
/// An action of the facade on a store or item.
#define PLAZ_ACT(method)                                                                                               \
    PLAZ_EXPORT(jboolean, PlazSwigIntf_1##method, jclass, jlong subject, jobject, jlong status, jobject,               \
                jlong exception, jobject) {                                                                            \
        return act(env, subject, status, exception, &HSCPlazSwigIntf::method);                                         \
    }
/// What the facade says without being asked about anything.
#define PLAZ_TELL(Result, method)                                                                                      \
    PLAZ_EXPORT(Result, PlazSwigIntf_1##method, jclass) {                                                              \
        return guard(env, []() -> decltype(auto) { return HSCPlazSwigIntf::method(); });                               \
    }
/// What the facade says of a store.
#define PLAZ_TELL_STORE(Result, method)                                                                                \
    PLAZ_EXPORT(Result, PlazSwigIntf_1##method, jclass, jlong store, jobject) {                                        \
        return guard(env, [&] { return HSCPlazSwigIntf::method(at<HSCPlazQStore>(store)); });                          \
    }
/// What the facade does with a text.
#define PLAZ_TELL_TEXT(Result, method)                                                                                 \
    PLAZ_EXPORT(Result, PlazSwigIntf_1##method, jclass, jstring text) {                                                \
        return guard(env, [&] { return HSCPlazSwigIntf::method(toNative(env, text)); });                               \
    }
// NOLINTEND(bugprone-macro-parentheses)

PLAZ_TELL(jlong, getStores)
PLAZ_TELL(jstring, getHttpProxy)
PLAZ_TELL(jstring, getQStoresPath)
PLAZ_TELL_TEXT(jlong, getStore)
PLAZ_TELL_TEXT(jlong, getItems)
PLAZ_TELL_TEXT(void, setHttpProxy)
PLAZ_TELL_TEXT(jboolean, setQStoresPath)
PLAZ_TELL_STORE(jboolean, canAccessRepo)
PLAZ_TELL_STORE(jboolean, isInstalled)
PLAZ_TELL_STORE(jboolean, isRefreshed)
PLAZ_TELL_STORE(jlong, getLastRefreshTime)
PLAZ_ACT(install)
PLAZ_ACT(uninstall)
PLAZ_ACT(update)
PLAZ_ACT(refreshCatalog)
PLAZ_ACT(hasUpdate)
PLAZ_EXPORT(jboolean, PlazSwigIntf_1setQStoreLocalRootDir, jclass, jlong store, jobject, jstring dir, jlong record,
            jobject) {
    return guard(env, [&] {
        const std::string path = toNative(env, dir);
        return HSCPlazSwigIntf::setQStoreLocalRootDir(at<HSCPlazQStore>(store), path, exception(record));
    });
}

PLAZ_GET(PlazStore, HSCPlazQStore, getBranch)
PLAZ_GET(PlazStore, HSCPlazQStore, getCategories)
PLAZ_GET(PlazStore, HSCPlazQStore, getDescription)
PLAZ_GET(PlazStore, HSCPlazQStore, getDisplayName)
PLAZ_GET(PlazStore, HSCPlazQStore, getItemRootDir)
PLAZ_GET(PlazStore, HSCPlazQStore, getItems)
PLAZ_GET(PlazStore, HSCPlazQStore, getLocalRootDir)
PLAZ_GET(PlazStore, HSCPlazQStore, getMetadataFile)
PLAZ_GET(PlazStore, HSCPlazQStore, getName)
PLAZ_GET(PlazStore, HSCPlazQStore, getRoot)
PLAZ_GET(PlazStore, HSCPlazQStore, getStoreType)
PLAZ_GET(PlazStore, HSCPlazQStore, getSupportUrl)
PLAZ_GET(PlazStore, HSCPlazQStore, getUrl)
PLAZ_GET(PlazStore, HSCPlazQStore, isUserRepository)
PLAZ_SET_TEXT(PlazStore, HSCPlazQStore, setBranch)
PLAZ_SET_TEXT(PlazStore, HSCPlazQStore, setDescription)
PLAZ_SET_TEXT(PlazStore, HSCPlazQStore, setDisplayName)
PLAZ_SET_TEXT(PlazStore, HSCPlazQStore, setUrl)

PLAZ_GET(PlazItem, HSCPlazQItem, IsInstalled)
PLAZ_GET(PlazItem, HSCPlazQItem, NeedsRefresh)
PLAZ_GET(PlazItem, HSCPlazQItem, getAuthor)
PLAZ_GET(PlazItem, HSCPlazQItem, getCategories)
PLAZ_GET(PlazItem, HSCPlazQItem, getCommitId)
PLAZ_GET(PlazItem, HSCPlazQItem, getCompany)
PLAZ_GET(PlazItem, HSCPlazQItem, getCompanyDisplayName)
PLAZ_GET(PlazItem, HSCPlazQItem, getDescription)
PLAZ_GET(PlazItem, HSCPlazQItem, getDisplayName)
PLAZ_GET(PlazItem, HSCPlazQItem, getHistory)
PLAZ_GET(PlazItem, HSCPlazQItem, getItemDependencies)
PLAZ_GET(PlazItem, HSCPlazQItem, getItemSearchKeywords)
PLAZ_GET(PlazItem, HSCPlazQItem, getLocalRootDir)
PLAZ_GET(PlazItem, HSCPlazQItem, getLogo)
PLAZ_GET(PlazItem, HSCPlazQItem, getMetadataFile)
PLAZ_GET(PlazItem, HSCPlazQItem, getName)
PLAZ_GET(PlazItem, HSCPlazQItem, getRevision)
PLAZ_GET(PlazItem, HSCPlazQItem, getRoot)
PLAZ_GET(PlazItem, HSCPlazQItem, getSource)
PLAZ_GET(PlazItem, HSCPlazQItem, getStoreName)
PLAZ_GET(PlazItem, HSCPlazQItem, getUrl)
PLAZ_GET(PlazItem, HSCPlazQItem, getWebsite)

PLAZ_GET(PlazItemDependency, HSCPlazQItemDependency, getCompany)
PLAZ_GET(PlazItemDependency, HSCPlazQItemDependency, getItem)
PLAZ_GET(PlazItemDependency, HSCPlazQItemDependency, getRevision)
PLAZ_GET(PlazItemDependency, HSCPlazQItemDependency, getStore)
PLAZ_GET(PlazItemDependency, HSCPlazQItemDependency, isOptional)

PLAZ_GET(PlazCategory, HSCPlazCategory, getDescription)
PLAZ_GET(PlazCategory, HSCPlazCategory, getDisplayName)
PLAZ_GET(PlazCategory, HSCPlazCategory, getName)
PLAZ_GET(PlazCategory, HSCPlazCategory, getSubCategories)

PLAZ_NEW(TaskStatus, HDGUIStatus)
PLAZ_DELETE(TaskStatus, HDGUIStatus)
PLAZ_GET(TaskStatus, HDGUIStatus, canCancel)
PLAZ_EXPORT(void, TaskStatus_1cancel, jclass, jlong handle, jobject) {
    guard(env, [&] { status(handle).cancel(); });
}
PLAZ_SET_TEXT(TaskStatus, HDGUIStatus, changeAbbrevStatus)
PLAZ_SET(TaskStatus, HDGUIStatus, changePercentComplete, jdouble, value)
PLAZ_SET_TEXT(TaskStatus, HDGUIStatus, changeStatus)
PLAZ_GET(TaskStatus, HDGUIStatus, getAbbrevStatusMessage)
PLAZ_GET(TaskStatus, HDGUIStatus, getPercentComplete)
PLAZ_GET(TaskStatus, HDGUIStatus, getState)
PLAZ_GET(TaskStatus, HDGUIStatus, getStatusMessage)
PLAZ_GET(TaskStatus, HDGUIStatus, isCanceled)
PLAZ_GET(TaskStatus, HDGUIStatus, isDeterminate)
PLAZ_SET(TaskStatus, HDGUIStatus, setDeterminate, jboolean, value == JNI_TRUE)
PLAZ_SET(TaskStatus, HDGUIStatus, setState, jint, value)

PLAZ_EXPORT(jlong, PlazException_1new_1PlazException__, jclass) {
    return guard(env, [] { return std::make_unique<HSCPlazException>().release(); });
}
PLAZ_EXPORT(jlong, PlazException_1new_1PlazException__Ljava_lang_String_2II, jclass, jstring text, jint code,
            jint context) {
    return guard(env, [&] {
        return std::make_unique<HSCPlazException>(toNative(env, text, "null string"), code, context).release();
    });
}
PLAZ_DELETE(PlazException, HSCPlazException)
PLAZ_EXPORT(jstring, PlazException_1get_1PlazException_1error_1msg, jclass, jlong handle, jobject) {
    return guard(env, [&]() -> const std::string& { return exception(handle).error_msg; });
}
PLAZ_EXPORT(void, PlazException_1set_1PlazException_1error_1msg, jclass, jlong handle, jobject, jstring text) {
    guard(env, [&] { setField(handle, &HSCPlazException::error_msg, toNative(env, text, "null string")); });
}
#define PLAZ_FIELD(field, mangled)                                                                                     \
    PLAZ_EXPORT(jint, PlazException_1get_1PlazException_1##mangled, jclass, jlong handle, jobject) {                   \
        return guard(env, [&] { return exception(handle).field; });                                                    \
    }                                                                                                                  \
    PLAZ_EXPORT(void, PlazException_1set_1PlazException_1##mangled, jclass, jlong handle, jobject, jint value) {       \
        guard(env, [&] { setField(handle, &HSCPlazException::field, value); });                                        \
    }
PLAZ_FIELD(error_code, error_1code)
PLAZ_FIELD(error_context, error_1context)

PLAZ_VECTOR(StringVector, std::string, toNative(env, element), jstring element)
PLAZ_POINTER_VECTOR(PlazQStoreVec, HSCPlazQStore)
PLAZ_POINTER_VECTOR(PlazItemVec, HSCPlazQItem)
PLAZ_POINTER_VECTOR(PlazItemDependencyVec, HSCPlazQItemDependency)
PLAZ_POINTER_VECTOR(PlazCategoryVec, HSCPlazCategory)

PLAZ_ITERATOR(StringVectorIter, std::string)
PLAZ_ITERATOR(PlazQStoreIter, HSCPlazQStore*)
PLAZ_ITERATOR(PlazItemIter, HSCPlazQItem*)
PLAZ_ITERATOR(PlazItemDependencyIter, HSCPlazQItemDependency*)
PLAZ_ITERATOR(PlazCategoryIter, HSCPlazCategory*)
