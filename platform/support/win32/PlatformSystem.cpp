#include "support/PlatformSystem.h"

#include "Win32.h"
#include "support/PlatformFile.h"

#include <cstdlib>
#include <fcntl.h>
#include <io.h>
#include <memory>
#include <shellapi.h>
#include <wincrypt.h>

namespace platform {

namespace {

constexpr int standardOutput = 1;
constexpr int standardError = 2;

std::string findLibraryFile() {
    HMODULE module = nullptr;
    constexpr DWORD flags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (!GetModuleHandleExW(flags, reinterpret_cast<const wchar_t*>(&pathListSeparator), &module)) return {};
    std::wstring name(32767, L'\0');
    name.resize(GetModuleFileNameW(module, name.data(), static_cast<DWORD>(name.size())));
    std::error_code error;
    return resolveLinks(win32::toUtf8(name), error);
}

} // namespace

const char pathListSeparator = ';';
const std::string programEnding = ".exe";

const std::string& getLibraryFile() {
    static const std::string file = findLibraryFile();
    return file;
}

std::string getHomeDir() {
    return getVariable("USERPROFILE").value_or(std::string());
}

std::vector<std::string> getEnvironment() {
    const std::unique_ptr<wchar_t, BOOL (*)(wchar_t*)> block(GetEnvironmentStringsW(), FreeEnvironmentStringsW);
    std::vector<std::string> variables;
    for (const wchar_t* variable = block.get(); variable && *variable; variable += wcslen(variable) + 1)
        variables.push_back(win32::toUtf8(variable));
    return variables;
}

std::optional<std::string> getVariable(const std::string& name) {
    const std::wstring wide = win32::toWide(name);
    SetLastError(ERROR_SUCCESS);
    std::wstring value(GetEnvironmentVariableW(wide.c_str(), nullptr, 0), L'\0');
    if (value.empty() && GetLastError() == ERROR_ENVVAR_NOT_FOUND) return std::nullopt;
    value.resize(GetEnvironmentVariableW(wide.c_str(), value.data(), static_cast<DWORD>(value.size())));
    return win32::toUtf8(value);
}

void setEnvironment(const std::string& name, const std::string& value) {
    _wputenv_s(win32::toWide(name).c_str(), win32::toWide(value).c_str());
}

std::string getVariableKey(const std::string& name) {
    return getNameKey(name);
}

namespace {

using Store = std::unique_ptr<void, void (*)(HCERTSTORE)>;

Store openStore(const wchar_t* name) {
    return {CertOpenSystemStoreW(0, name), [](HCERTSTORE store) { CertCloseStore(store, 0); }};
}

// One without a list of uses may do anything.
bool mayVouchForServers(PCCERT_CONTEXT certificate) {
    DWORD size = 0;
    if (!CertGetEnhancedKeyUsage(certificate, 0, nullptr, &size)) return GetLastError() == DWORD(CRYPT_E_NOT_FOUND);
    std::vector<BYTE> buffer(size);
    auto* const usage = reinterpret_cast<CERT_ENHKEY_USAGE*>(buffer.data());
    if (!CertGetEnhancedKeyUsage(certificate, 0, usage, &size)) return false;
    if (usage->cUsageIdentifier == 0) return GetLastError() == DWORD(CRYPT_E_NOT_FOUND);
    for (DWORD i = 0; i < usage->cUsageIdentifier; ++i)
        if (std::string(usage->rgpszUsageIdentifier[i]) == szOID_PKIX_KP_SERVER_AUTH) return true;
    return false;
}

bool isIn(const Store& store, PCCERT_CONTEXT certificate) {
    constexpr DWORD encoding = X509_ASN_ENCODING | PKCS_7_ASN_ENCODING;
    PCCERT_CONTEXT found =
        store ? CertFindCertificateInStore(store.get(), encoding, 0, CERT_FIND_EXISTING, certificate, nullptr)
              : nullptr;
    return found && CertFreeCertificateContext(found);
}

std::string toPem(PCCERT_CONTEXT certificate) {
    DWORD size = 0;
    const auto convert = [&](char* text) {
        return CryptBinaryToStringA(certificate->pbCertEncoded, certificate->cbCertEncoded, CRYPT_STRING_BASE64HEADER,
                                    text, &size);
    };
    if (!convert(nullptr)) return {};
    std::string text(size, '\0');
    if (!convert(text.data())) return {};
    text.resize(size);
    return text;
}

} // namespace

std::string getAuthorities() {
    const Store roots = openStore(L"ROOT"), disallowed = openStore(L"Disallowed");
    std::string text;
    PCCERT_CONTEXT certificate = nullptr;
    while (roots && (certificate = CertEnumCertificatesInStore(roots.get(), certificate)))
        if (mayVouchForServers(certificate) && !isIn(disallowed, certificate)) text += toPem(certificate);
    return text;
}

std::vector<std::string> startProgram(int /*argc*/, const char* const* /*argv*/) {
    static const UINT pages[] = {GetConsoleCP(), GetConsoleOutputCP()};
    std::atexit([] { // the console is there for other programs, too
        SetConsoleCP(pages[0]);
        SetConsoleOutputCP(pages[1]);
    });
    SetConsoleCP(CP_UTF8);
    SetConsoleOutputCP(CP_UTF8);
    for (const int stream : {standardOutput, standardError}) _setmode(stream, _O_BINARY);
    int count = 0;
    const std::unique_ptr<wchar_t*, HLOCAL (*)(void*)> args(CommandLineToArgvW(GetCommandLineW(), &count), LocalFree);
    std::vector<std::string> texts;
    for (int i = 0; i < count; ++i) texts.push_back(win32::toUtf8(args.get()[i]));
    return texts;
}

const std::string plainInShell; // the values of variables stand for %NAME%

int runShell(const std::string& command) {
    return _wsystem(win32::toWide(command).c_str());
}

int divertStandardOutput() {
    const int kept = _dup(standardOutput);
    if (kept < 0) return -1;
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(kept)); // NOLINT(performance-no-int-to-ptr)
    SetHandleInformation(handle, HANDLE_FLAG_INHERIT, 0);
    if (_dup2(standardError, standardOutput) == 0) return kept;
    _close(kept);
    return -1;
}

void restoreStandardOutput(int kept) {
    _dup2(kept, standardOutput);
    _close(kept);
}

int getTerminalWidth() {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &info)) return 0;
    return info.srWindow.Right - info.srWindow.Left + 1;
}

bool showsColours(bool isErrors) {
    const HANDLE console = GetStdHandle(isErrors ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    return GetConsoleMode(console, &mode) && SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

bool isInputTerminal() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode);
}

void keepBrokenPipeHandler(const std::function<void()>& work) {
    work();
}

// A read of the console ends there by itself.
void letCtrlCEndReads() {}

} // namespace platform
