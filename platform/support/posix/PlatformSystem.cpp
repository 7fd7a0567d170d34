#include "support/PlatformSystem.h"

#include "Aside.h"
#include "support/PlatformFile.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <limits>
#include <memory>
#include <pwd.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace platform {

namespace {

std::string findLibraryFile() {
    Dl_info info{};
    if (!dladdr(&pathListSeparator, &info) || !info.dli_fname) return {};
    const std::unique_ptr<char, void (*)(void*)> file(realpath(info.dli_fname, nullptr), std::free);
    return file ? file.get() : std::string();
}

} // namespace

const char pathListSeparator = ':';
const std::string programEnding;

const std::string& getLibraryFile() {
    static const std::string file = findLibraryFile();
    return file;
}

namespace {
// A library that was loaded by a relative name can be found only before anybody changes the directory.
[[maybe_unused]] const std::string& foundAtLoad = getLibraryFile();
} // namespace

std::string getHomeDir() {
    const char* home = std::getenv("HOME");
    if (home && *home) return home;
    const passwd* user = getpwuid(getuid());
    return user && user->pw_dir ? user->pw_dir : std::string();
}

std::vector<std::string> getEnvironment() {
    std::vector<std::string> variables;
    for (char** variable = environ; variable && *variable; ++variable) variables.emplace_back(*variable);
    return variables;
}

std::optional<std::string> getVariable(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    return value ? std::optional<std::string>(value) : std::nullopt;
}

std::string getVariableKey(const std::string& name) {
    return name;
}

void setEnvironment(const std::string& name, const std::string& value) {
    setenv(name.c_str(), value.c_str(), 1);
}

std::string getAuthorities() {
    static constexpr const char* files[] = {"/etc/ssl/certs/ca-certificates.crt", "/etc/pki/tls/certs/ca-bundle.crt",
                                            "/etc/ssl/ca-bundle.pem", "/etc/ssl/cert.pem"};
    std::string text;
    for (const char* file : files)
        if (readFile(file, text, std::numeric_limits<std::uint64_t>::max()) == HIOStatus::ok) return text;
    return {};
}

std::vector<std::string> startProgram(int argc, const char* const* argv) {
    std::signal(SIGXFSZ, SIG_IGN); // a limit of the user's for files is told as a full disk is
    return {argv, argv + argc};
}

const std::string plainInShell = "%";

int runShell(const std::string& command) {
    // RATIONALE: not by system(), which turns off Ctrl-C for the whole process meanwhile. A program that handles it, as
    // virtual machines do, does not expect that.
    std::string name = "sh", option = "-c", line = command;
    char* const words[] = {name.data(), option.data(), line.data(), nullptr};
    sigset_t end, before;
    sigemptyset(&end);
    sigaddset(&end, SIGCHLD);
    pthread_sigmask(SIG_BLOCK, &end, &before); // a handler of the program's might take the shell's status away
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    posix_spawnattr_setsigmask(&attributes, &before);
    pid_t shell = 0;
    int status = -1;
    if (posix_spawn(&shell, "/bin/sh", nullptr, &attributes, words, environ) == 0)
        while (waitpid(shell, &status, 0) < 0 && errno == EINTR) {
        }
    posix_spawnattr_destroy(&attributes);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return status;
}

int divertStandardOutput() {
    const int kept = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (kept >= 0 && dup2(STDERR_FILENO, STDOUT_FILENO) < 0) {
        close(kept);
        return -1;
    }
    return kept;
}

void restoreStandardOutput(int kept) {
    dup2(kept, STDOUT_FILENO);
    close(kept);
}

int getTerminalWidth() {
    constexpr int usualWidth = 80;
    if (!isatty(STDERR_FILENO)) return 0;
    winsize size{};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usualWidth;
}

bool showsColours(bool isErrors) {
    return isatty(isErrors ? STDERR_FILENO : STDOUT_FILENO) == 1;
}

bool isInputTerminal() {
    return isatty(STDIN_FILENO) == 1;
}

namespace {

/// Does @p work where nobody else sees what it does to signals: in a process for this moment, as posix_spawn() uses
/// one.
void workWithOwnHandlers(const std::function<void()>& work) {
    const pid_t process = workAside(SIGCHLD, work);
    while (process > 0 && waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
    }
}

} // namespace

void keepBrokenPipeHandler(const std::function<void()>& work) {
    struct sigaction before {};
    const bool isHandled =
        sigaction(SIGPIPE, nullptr, &before) == 0 && before.sa_handler != SIG_DFL && before.sa_handler != SIG_IGN;
    if (isHandled) workWithOwnHandlers(work);
    work();
    if (isHandled) sigaction(SIGPIPE, &before, nullptr); // in case that nothing came of the other process
}

void letCtrlCEndReads() {
    struct sigaction action {};
    if (sigaction(SIGINT, nullptr, &action) != 0) return;
    action.sa_flags &= ~SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
}

} // namespace platform
