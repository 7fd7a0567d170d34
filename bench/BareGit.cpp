#include "BareGit.h"

#include "BenchData.h"
#include "Workspace.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "plaz/model/repo/git/HSCPlazGitEnv.h"
#include "support/HUTFork.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

std::vector<char*> toPointers(const std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (const std::string& text : texts) pointers.push_back(const_cast<char*>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

void copyDirectory(const fs::path& source, const fs::path& dest, bool link) {
    fs::create_directory(dest);
    for (const fs::directory_entry& entry : fs::directory_iterator(source)) {
        const fs::path target = dest / entry.path().filename();
        if (entry.is_directory())
            copyDirectory(entry.path(), target, link || entry.path().filename() == "objects");
        else if (link)
            fs::create_hard_link(entry.path(), target);
        else
            fs::copy_file(entry.path(), target);
    }
}

// The environment in which the product runs a command, as a child sees it.
std::vector<std::string> environmentOf(const std::string& command, const std::string& dir) {
    const std::string output = Workspace::get().path("environment");
    HUTFork env;
    env.dontUseHDLDPath();
    HSCPlazGitEnv::apply(env, command, dir, "");
    env.setProg("env", true);
    env.addArg("-0");
    env.setLogFile(output);
    if (env.launch(true, true, true, true) != 0) throw std::runtime_error("env failed");
    std::vector<std::string> variables;
    const std::string text = readFile(output);
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\0', begin), text.size());
        variables.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return variables;
}

} // namespace

int runBare(const std::vector<std::string>& command, const std::string& dir,
            const std::vector<std::string>& environment) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, 1, 2);
    if (!dir.empty()) posix_spawn_file_actions_addchdir_np(&actions, dir.c_str());
    pid_t pid = 0;
    const int error = posix_spawn(&pid, command.front().c_str(), &actions, nullptr, toPointers(command).data(),
                                  toPointers(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) throw std::runtime_error("cannot start " + command.front());
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void copyIndexBare(const std::string& index, const std::string& staging) {
    copyDirectory(index, staging, false);
}

BareGit::BareGit() : m_program(HSCPlazGit::getGitExePath()) {}

void BareGit::run(const std::vector<std::string>& args, const std::string& dir) {
    std::vector<std::string>& environment = m_environments[{args.front(), dir}];
    if (environment.empty()) environment = environmentOf(args.front(), dir);
    std::vector<std::string> command{m_program};
    command.insert(command.end(), args.begin(), args.end());
    if (runBare(command, dir, environment) != 0) throw std::runtime_error("git " + args.front() + " failed");
}

void BareGit::runBracketed(const std::vector<std::string>& args, const std::string& dir) {
    configure("http.sslVerify", "false", dir);
    run(args, dir);
    configure("http.sslVerify", "true", dir);
}

void BareGit::configure(const std::string& key, const std::string& value, const std::string& dir) {
    run({"config", "--replace-all", key, value}, dir);
}

void BareGit::select(const std::string& patterns, const std::string& dir) {
    configure("core.sparsecheckout", "true", dir);
    BenchData::writeFile(dir + "/.git/info/sparse-checkout", patterns);
}
