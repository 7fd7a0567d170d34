#include "BareInstall.h"

#include "BenchData.h"

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

void BareInstall::git(const std::vector<std::string>& args, const std::string& dir) const {
    std::vector<std::string> command{m_git};
    command.insert(command.end(), args.begin(), args.end());
    if (runBare(command, dir, m_environment) != 0) throw std::runtime_error("git " + args.front() + " failed");
}

void BareInstall::run(const std::string& staging, const std::string& itemRoot, const std::string& commit) const {
    copyIndexBare(m_index, staging);
    git({"config", "--replace-all", "core.sparsecheckout", "true"}, staging);
    BenchData::writeFile(staging + "/.git/info/sparse-checkout", itemRoot + "\n");
    git({"config", "--replace-all", "http.sslVerify", "false"}, staging);
    git({"checkout", commit}, staging);
    git({"config", "--replace-all", "http.sslVerify", "true"}, staging);
}
