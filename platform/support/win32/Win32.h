#pragma once

#ifndef NOMINMAX // the standard library may have it already
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>

/// What the sources of this folder share: texts and names in the system's form, handles, errors.
namespace win32 {

/// The UTF-16 that the system's calls take.
std::wstring toWide(const std::string& text);
std::string toUtf8(std::wstring_view text);
/// The same with forward slashes, and without the prefix of long names.
std::string toGenericName(std::wstring_view name);

/// An absolute name that may be longer than 260 characters, with backslashes; the system's name of it for a device.
/// Empty for an empty name.
std::wstring toLongName(const std::string& name);

/// What the system says of an error, as a part of a sentence.
std::string describe(DWORD error);

/// Owns a handle of the system; false without one.
class Handle {
public:
    explicit Handle(HANDLE handle = nullptr) : m_handle(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
    ~Handle() { close(); }
    Handle(Handle&& other) noexcept : m_handle(std::exchange(other.m_handle, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    explicit operator bool() const { return m_handle; }
    HANDLE get() const { return m_handle; }
    /// The handle, which is the caller's from now on; the system's word for none where there is none.
    HANDLE release() { return m_handle ? std::exchange(m_handle, nullptr) : INVALID_HANDLE_VALUE; }
    void close() {
        if (m_handle) CloseHandle(std::exchange(m_handle, nullptr));
    }

private:
    HANDLE m_handle;
};

/// Whoever else has a file open may do what he likes with it.
constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// Whether an entry with these marks is a link. Not all that carries a tag is one: files and directories that a cloud
/// service keeps carry one, too.
bool isLink(DWORD attributes, DWORD tag);

/// The system's error for a link that is not followed, ERROR_STOPPED_ON_SYMLINK, which not every compiler's headers
/// know.
constexpr DWORD stoppedByLink = 681;

/// Opens, or makes, a file or directory of that name; nothing, with the system's error for links that are not followed,
/// where a link stands there.
Handle openItself(const std::wstring& name, DWORD access, DWORD disposition, SECURITY_ATTRIBUTES* attributes = nullptr,
                  DWORD sharing = shareAll);

/// A user, or a group of them, in the words of security descriptors; empty when that cannot be had.
std::wstring toText(PSID id);
/// The same of the user of this process.
std::wstring getUser();

/// Rights for a file that keep anything but this user's programs from it; those of a directory hold for what is made in
/// it as well.
class OwnerOnly {
public:
    OwnerOnly();
    /// Null when the rights could not be made.
    SECURITY_ATTRIBUTES* get() { return m_descriptor ? &m_attributes : nullptr; }

private:
    std::unique_ptr<void, HLOCAL (*)(void*)> m_descriptor{nullptr, LocalFree};
    SECURITY_ATTRIBUTES m_attributes{};
};

/// The name of what a handle leads to, every link resolved, in the form of toLongName(); empty when there is none.
std::wstring getFinalName(const Handle& handle);

} // namespace win32
