#include "support/GitRepo.h"

#include "support/HUTEnv.h"
#include "support/HUTFork.h"

#include <boost/filesystem.hpp>
#include <boost/filesystem/fstream.hpp>

#include <iterator>
#include <stdexcept>

namespace fs = boost::filesystem;

GitRepo::GitRepo(std::string dir, const std::string& branch) : m_dir(std::move(dir)) {
    fs::create_directories(m_dir);
    git({"init", "--initial-branch=" + branch});
}

GitRepo& GitRepo::write(const std::string& file, const std::string& content) {
    const fs::path path = fs::path(m_dir) / file;
    fs::create_directories(path.parent_path());
    fs::ofstream(path, std::ios::binary) << content;
    return *this;
}

std::string GitRepo::commit() {
    git({"add", "--all", "--force"});
    git({"commit", "--allow-empty", "--message=change"});
    return git({"rev-parse", "HEAD"});
}

std::string GitRepo::git(const std::vector<std::string>& args) const {
    HUTFork fork;
    for (const std::string& variable : HUTEnv::getAll())
        if (variable.compare(0, 4, "GIT_") == 0) fork.unsetEnv(variable.substr(0, variable.find('=')));
    fork.setEnv("GIT_CONFIG_NOSYSTEM", "1");
    fork.setEnv("GIT_CONFIG_GLOBAL", "/dev/null");
    for (const char* role : {"AUTHOR", "COMMITTER"}) {
        fork.setEnv(std::string("GIT_") + role + "_NAME", "Test");
        fork.setEnv(std::string("GIT_") + role + "_EMAIL", "test@example.com");
    }
    const std::string log = m_dir + ".log";
    fork.setProg("git", true);
    fork.setDir(m_dir);
    fork.setLogFile(log);
    fork.setTimeout(60);
    for (const std::string& arg : args) fork.addArg(arg);
    const int status = fork.launch(true, true, true, true);

    fs::ifstream file(log, std::ios::binary);
    std::string output{std::istreambuf_iterator<char>(file), {}};
    fs::remove(log);
    if (status != 0) throw std::runtime_error(fork.getCmdLineAsStr() + ": " + output);
    if (!output.empty() && output.back() == '\n') output.pop_back();
    return output;
}
