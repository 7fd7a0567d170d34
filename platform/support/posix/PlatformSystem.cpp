#include "support/PlatformSystem.h"

#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <memory>
#include <pwd.h>
#include <sys/ioctl.h>
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

std::vector<std::string> startProgram(int argc, const char* const* argv) {
    std::signal(SIGXFSZ, SIG_IGN); // a limit of the user's for files is told as a full disk is
    return {argv, argv + argc};
}

const std::string plainInShell = "%";

int runShell(const std::string& command) {
    return std::system(command.c_str()); // NOLINT(cert-env33-c): what it is for
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

bool isInputTerminal() {
    return isatty(STDIN_FILENO) == 1;
}

void keepBrokenPipeHandler(const std::function<void()>& work) {
    struct sigaction before {};
    const bool isKnown = sigaction(SIGPIPE, nullptr, &before) == 0;
    work();
    if (isKnown && before.sa_handler != SIG_DFL && before.sa_handler != SIG_IGN) sigaction(SIGPIPE, &before, nullptr);
}

void letCtrlCEndReads() {
    struct sigaction action {};
    if (sigaction(SIGINT, nullptr, &action) != 0) return;
    action.sa_flags &= ~SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
}

} // namespace platform
