#include "support/System.h"

#include "support/HI18N.h"
#include "support/HUTFile.h"
#include "support/TempDir.h"

#include <boost/algorithm/string/replace.hpp>
#include <process.h>
#include <stdexcept>

#include <windows.h>

#include <aclapi.h>
#include <sddl.h>

const char* const test_system::homeVariable = "USERPROFILE";
const char* const test_system::pathListSeparator = ";";
const char* const test_system::programSuffix = ".exe";

// Wine's C: lies behind a link of the system that it runs on, which programs there resolve.
std::string test_system::findTempDirectory() {
    return "Z:/tmp";
}

// Wine says that it has made one, and has not.
bool test_system::makeLink(const std::string& target, const std::string& link) {
    const std::wstring name = HI18N::convert(link);
    return CreateSymbolicLinkW(name.c_str(), HI18N::convert(target).c_str(), 0) &&
           GetFileAttributesW(name.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool test_system::giveAway(const std::string& /*path*/) {
    return false;
}

bool test_system::openToAll(const std::string& /*path*/) {
    return false;
}

bool test_system::isReadableByOthers(const std::string& file) {
    PSECURITY_DESCRIPTOR rights = nullptr;
    wchar_t* text = nullptr;
    if (GetNamedSecurityInfoW(HI18N::convert(file).c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr,
                              nullptr, nullptr, &rights) != ERROR_SUCCESS ||
        !ConvertSecurityDescriptorToStringSecurityDescriptorW(rights, SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &text,
                                                              nullptr))
        throw std::runtime_error("the rights of " + file + " cannot be read");
    const bool isOpenToAll = std::wstring(text).find(L";WD)") != std::wstring::npos;
    LocalFree(text);
    LocalFree(rights);
    return isOpenToAll;
}

void test_system::putVariable(const std::string& name, const std::optional<std::string>& value) {
    SetEnvironmentVariableW(HI18N::convert(name).c_str(), value ? HI18N::convert(*value).c_str() : nullptr);
}

void test_system::startAside(const std::string& program, const char* argument) {
    _spawnl(_P_NOWAIT, program.c_str(), program.c_str(), argument, nullptr);
}

// Drive Z is the tree of the system that Wine runs on.
std::string test_system::toShellName(const std::string& path) {
    return path.substr(2);
}

// Beside the script lies the program that hands commands to the system that Wine runs on.
void test_system::writeProgram(const std::string& file, const std::string& script, const std::string& dir) {
    writeFile(file, "");
    HUTFile::writeAtomically(file + ".sh", boost::algorithm::replace_all_copy(script, dir, toShellName(dir)) + "\n",
                             true);
    std::wstring helper(32767, L'\0');
    helper.resize(GetModuleFileNameW(nullptr, helper.data(), static_cast<DWORD>(helper.size())));
    helper = helper.substr(0, helper.rfind(L'\\') + 1) + L"git.exe";
    if (!CopyFileW(helper.c_str(), HI18N::convert(file).c_str(), FALSE)) throw std::runtime_error("no " + file);
}
