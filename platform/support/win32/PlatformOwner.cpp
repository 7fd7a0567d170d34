#include "support/PlatformOwner.h"

#include "Win32.h"

#include <aclapi.h>

namespace platform {

namespace {

using win32::Handle;

constexpr const wchar_t* administrators = L"S-1-5-32-544";
constexpr const wchar_t* localSystem = L"S-1-5-18";

/// Who owns what a handle leads to, in the words of security descriptors; empty when that cannot be had.
std::wstring findOwner(const Handle& file) {
    PSID owner = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (!file || GetSecurityInfo(file.get(), SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION, &owner, nullptr, nullptr,
                                 nullptr, &descriptor) != ERROR_SUCCESS)
        return {};
    const std::unique_ptr<void, HLOCAL (*)(void*)> owned(descriptor, LocalFree);
    return win32::toText(owner);
}

// The user as a disk knows him: a share may have a name of its own for him, or one for everybody.
std::wstring findOwnName(const std::wstring& dir) {
    const std::wstring name = dir + L".plaz-" + std::to_wstring(GetCurrentProcessId()) + L"-owner.tmp";
    return findOwner(Handle(CreateFileW(name.c_str(), READ_CONTROL | DELETE, 0, nullptr, CREATE_NEW,
                                        FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr)));
}

} // namespace

bool isOwn(const std::string& path) {
    const std::wstring name = win32::toLongName(path);
    const std::wstring owner = findOwner(win32::openItself(name, READ_CONTROL, OPEN_EXISTING));
    return !owner.empty() && (owner == win32::getUser() || owner == administrators || owner == localSystem ||
                              owner == findOwnName(name.substr(0, name.rfind(L'\\') + 1)));
}

bool isOpenToOthers(const std::string& /*path*/) {
    return false;
}

} // namespace platform
