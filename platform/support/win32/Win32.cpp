#include "Win32.h"

#include "support/HI18N.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <sddl.h>

namespace win32 {

namespace {

constexpr std::wstring_view longPrefix = LR"(\\?\)";
constexpr std::wstring_view longShare = LR"(\\?\UNC\)";

bool hasPrefix(std::wstring_view text, std::wstring_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

/// Calls @p fill(buffer, size), which returns the length of the text or the size that it wants; empty on failure.
template <typename Fill> std::wstring getText(Fill fill) {
    std::wstring text(MAX_PATH, L'\0');
    DWORD size = fill(text.data(), static_cast<DWORD>(text.size()));
    while (size >= text.size()) {
        text.resize(size + 1);
        size = fill(text.data(), static_cast<DWORD>(text.size()));
    }
    text.resize(size);
    return text;
}

} // namespace

std::wstring toWide(const std::string& text) {
    return HI18N::convert(text);
}

std::string toUtf8(std::wstring_view text) {
    return HI18N::convert(std::wstring(text));
}

std::string toGenericName(std::wstring_view name) {
    std::wstring plain(name);
    if (hasPrefix(name, longShare))
        plain.replace(0, longShare.size(), LR"(\\)");
    else if (hasPrefix(name, longPrefix))
        plain.erase(0, longPrefix.size());
    std::replace(plain.begin(), plain.end(), L'\\', L'/');
    return toUtf8(plain);
}

std::wstring toLongName(const std::string& name) {
    std::wstring wide = toWide(name);
    std::replace(wide.begin(), wide.end(), L'/', L'\\');
    if (wide.empty() || hasPrefix(wide, longPrefix)) return wide;
    const std::wstring full =
        getText([&wide](wchar_t* text, DWORD size) { return GetFullPathNameW(wide.c_str(), size, text, nullptr); });
    if (hasPrefix(full, LR"(\\.\)")) return full; // a device
    if (hasPrefix(full, LR"(\\)")) return std::wstring(longShare) + full.substr(2);
    return std::wstring(longPrefix) + full;
}

std::string describe(DWORD error) {
    wchar_t* text = nullptr;
    constexpr DWORD flags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    const DWORD size = FormatMessageW(flags, nullptr, error, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    const std::unique_ptr<wchar_t, HLOCAL (*)(void*)> owned(text, LocalFree);
    if (size == 0) return "error " + std::to_string(error);
    std::wstring_view line(text, size);
    while (!line.empty() && (line.back() <= L' ' || line.back() == L'.')) line.remove_suffix(1);
    return toUtf8(line);
}

bool isLink(DWORD attributes, DWORD tag) {
    return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && IsReparseTagNameSurrogate(tag);
}

Handle openItself(const std::wstring& name, DWORD access, DWORD disposition, SECURITY_ATTRIBUTES* attributes,
                  DWORD sharing) {
    constexpr DWORD flags = FILE_ATTRIBUTE_NORMAL | FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT;
    Handle file(
        CreateFileW(name.c_str(), access | FILE_READ_ATTRIBUTES, sharing, attributes, disposition, flags, nullptr));
    FILE_ATTRIBUTE_TAG_INFO info{};
    if (!file || !GetFileInformationByHandleEx(file.get(), FileAttributeTagInfo, &info, sizeof info) ||
        !isLink(info.FileAttributes, info.ReparseTag))
        return file;
    file.close();
    SetLastError(stoppedByLink);
    return file;
}

std::wstring toText(PSID id) {
    wchar_t* text = nullptr;
    if (!id || !ConvertSidToStringSidW(id, &text)) return {};
    const std::unique_ptr<wchar_t, HLOCAL (*)(void*)> owned(text, LocalFree);
    return text;
}

std::wstring getUser() {
    HANDLE opened = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened)) return {};
    const Handle token(opened);
    alignas(TOKEN_USER) std::array<std::byte, sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE> buffer{};
    DWORD size = 0;
    if (!GetTokenInformation(token.get(), TokenUser, buffer.data(), static_cast<DWORD>(buffer.size()), &size))
        return {};
    return toText(reinterpret_cast<const TOKEN_USER*>(buffer.data())->User.Sid);
}

// The owner is named apart from the user: on a share he may be known by another name, and what is made with the rights
// of an administrator belongs to all of them.
OwnerOnly::OwnerOnly() {
    const std::wstring user = getUser();
    if (user.empty()) return;
    const std::wstring rights = L"D:P(A;OICI;FA;;;OW)(A;OICI;FA;;;SY)(A;OICI;FA;;;" + user + L")";
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ConvertStringSecurityDescriptorToSecurityDescriptorW(rights.c_str(), SDDL_REVISION_1, &descriptor, nullptr);
    m_descriptor.reset(descriptor);
    m_attributes = {sizeof m_attributes, descriptor, FALSE};
}

std::wstring getFinalName(const Handle& handle) {
    if (!handle) return {};
    const auto ask = [&handle](DWORD form) {
        return getText([&](wchar_t* text, DWORD size) {
            return GetFinalPathNameByHandleW(handle.get(), text, size, form | VOLUME_NAME_DOS);
        });
    };
    // Some shares do not tell how their directories spell their names.
    const std::wstring name = ask(FILE_NAME_NORMALIZED);
    return name.empty() ? ask(FILE_NAME_OPENED) : name;
}

} // namespace win32
