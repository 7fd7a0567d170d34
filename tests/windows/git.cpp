// The git of the tests under Wine: the machine's own git runs the command, its output and status come back.
//
// RATIONALE: Wine starts a native program, yet gives no handle to wait on and no pipe that both sides can use. So a
// native shell connects back over the loopback device, three times: for the exit status, for the command and its
// output, and for the error output. When git.exe ends early the first connection closes, and git is killed.
//
// Git sees this process's directory and environment, but the native PATH. "Z:/x" and "Z:\x" become native names where
// an argument, or a value of HOME or GIT_*, starts, and behind "=" or ";" in it. Addresses go into git's configuration,
// where they are compared, so they stay as they were given; git itself maps the drive in them.

#include <winsock2.h>

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <filesystem>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr wchar_t nativeSide[] = LR"(bash -c "
exec 3<>/dev/tcp/127.0.0.1/$0 4<>/dev/tcp/127.0.0.1/$0 5<>/dev/tcp/127.0.0.1/$0 </dev/null >/dev/null 2>&1 || exit
exec 5>&$1
mapfile -d '' -t -u 4 command
set -m
env -i PATH=\"$PATH\" \"${command[@]}\" >&4 2>&5 3>&- 4>&- 5>&- & git=$!
exec 4>&- 5>&-
{ read -r -u 3; kill -KILL -- -$git; } & guard=$!
wait $git; status=$?; kill $guard
echo $status >&3
" )";

void check(bool isGood, const char* failure) {
    if (isGood) return;
    std::fprintf(stderr, "git.exe: %s, error %lu\n", failure, GetLastError());
    std::exit(127);
}

using Texts = std::map<std::wstring, std::wstring>;

/// Whether the name of a file on drive Z, the machine's own tree, starts there.
bool startsName(const std::wstring& text, std::size_t at) {
    return text.size() > at + 2 && (text[at] | 0x20) == L'z' && text[at + 1] == L':' &&
           (text[at + 2] == L'/' || text[at + 2] == L'\\');
}

std::wstring toNative(const std::wstring& text) {
    static const std::wstring longName = L"\\\\?\\";
    if (text == L"NUL") return L"/dev/null";
    std::wstring native;
    bool isName = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isStart = i == 0 || text[i - 1] == L'=' || text[i - 1] == L';';
        const std::size_t name = text.compare(i, longName.size(), longName) == 0 ? i + longName.size() : i;
        if (isStart && startsName(text, name)) {
            if (isName && text[i - 1] == L';') native.back() = L':'; // a list of names
            isName = true;
            native += L'/';
            i = name + 2;
        } else {
            native += isName && text[i] == L'\\' ? L'/' : text[i];
        }
    }
    return native;
}

Texts readEnvironment() {
    Texts environment;
    for (wchar_t** entry = _wenviron; *entry != nullptr; ++entry) {
        const std::wstring variable = *entry;
        const std::wstring name = variable.substr(0, variable.find(L'='));
        const std::wstring value = variable.substr(name.size() + 1);
        environment[name] = name == L"HOME" || name.compare(0, 4, L"GIT_") == 0 ? toNative(value) : value;
    }
    environment.erase(L"PATH");
    if (environment.count(L"HOME") == 0) environment[L"HOME"] = toNative(environment[L"USERPROFILE"]);
    return environment;
}

void mapAddresses(Texts& environment) {
    unsigned long count = std::wcstoul(environment[L"GIT_CONFIG_COUNT"].c_str(), nullptr, 10);
    for (const std::wstring scheme : {L"", L"file://", L"file:///"}) {
        const std::wstring number = std::to_wstring(count++);
        environment[L"GIT_CONFIG_KEY_" + number] = L"url." + scheme.substr(0, 7) + L"/.insteadOf";
        environment[L"GIT_CONFIG_VALUE_" + number] = scheme + L"Z:/";
    }
    environment[L"GIT_CONFIG_COUNT"] = std::to_wstring(count);
}

/// What stands in for git where a test wants that: the script that lies beside this program, if any.
std::wstring findScript() {
    std::wstring name(32767, L'\0');
    name.resize(GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size())));
    name += L".sh";
    return GetFileAttributesW(name.c_str()) == INVALID_FILE_ATTRIBUTES ? std::wstring() : toNative(name);
}

/// Variables, the program and its arguments, each with a NUL at its end.
std::string composeCommand(const std::vector<std::wstring>& args) {
    Texts environment = readEnvironment();
    mapAddresses(environment);
    std::string command;
    const auto add = [&](const std::wstring& word) { command += std::filesystem::path(word).u8string() + '\0'; };
    for (const auto& [name, value] : environment) add(name + L"=" + value);
    const std::wstring script = findScript();
    add(script.empty() ? L"git" : L"sh");
    if (!script.empty()) add(script);
    const auto addresses = std::find(args.begin(), args.end(), L"remote"); // "remote add" keeps what it is given
    std::for_each(args.begin(), addresses, [&add](const std::wstring& arg) { add(toNative(arg)); });
    std::for_each(addresses, args.end(), add);
    return command;
}

/// Listens on a free port of the loopback device, and returns that.
unsigned listenOnLoopback(SOCKET socket) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* const bare = reinterpret_cast<sockaddr*>(&address);
    int size = sizeof address;
    check(bind(socket, bare, size) == 0 && listen(socket, 3) == 0 && getsockname(socket, bare, &size) == 0,
          "cannot listen on the loopback device");
    return ntohs(address.sin_port);
}

SOCKET acceptSoon(SOCKET listener) {
    fd_set waiting{1, {listener}};
    timeval limit{30, 0};
    check(select(0, &waiting, nullptr, nullptr, &limit) == 1, "the native shell does not answer");
    return accept(listener, nullptr, nullptr);
}

/// Copies what comes in until its end; a sender whose bytes cannot be written is cut off.
void pump(SOCKET from, HANDLE to) {
    std::vector<char> buffer(65536);
    int size = 0;
    DWORD written = 0;
    do size = recv(from, buffer.data(), static_cast<int>(buffer.size()), 0);
    while (size > 0 && (to == nullptr || WriteFile(to, buffer.data(), static_cast<DWORD>(size), &written, nullptr)));
    closesocket(from);
}

void startNativeSide(unsigned port, bool isOneStream) {
    std::wstring command = nativeSide + std::to_wstring(port) + (isOneStream ? L" 4" : L" 5");
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION none{}; // Wine leaves it empty
    check(CreateProcessW(L"Z:\\bin\\bash", command.data(), nullptr, nullptr, 0, 0, nullptr, nullptr, &startup, &none),
          "cannot start /bin/bash");
}

int runGit(const std::vector<std::wstring>& args) {
    const HANDLE out = GetStdHandle(STD_OUTPUT_HANDLE);
    const HANDLE err = GetStdHandle(STD_ERROR_HANDLE);
    const std::string command = composeCommand(args);
    const int size = static_cast<int>(command.size());
    WSADATA data;
    check(WSAStartup(MAKEWORD(2, 2), &data) == 0, "no sockets");
    const SOCKET listener = socket(AF_INET, SOCK_STREAM, 0);
    startNativeSide(listenOnLoopback(listener), out == err);
    const SOCKET control = acceptSoon(listener), output = acceptSoon(listener);
    std::thread errorPump(pump, acceptSoon(listener), err);
    check(send(output, command.data(), size, 0) == size && shutdown(output, SD_SEND) == 0, "cannot send the command");
    pump(output, out);
    errorPump.join();
    char status[8]{};
    check(recv(control, status, sizeof status - 1, 0) > 0, "the native shell ended without a status");
    return std::atoi(status);
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    return runGit({argv + 1, argv + argc});
}
