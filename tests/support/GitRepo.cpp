#include "support/GitRepo.h"

#include "support/HUTEnv.h"
#include "support/HUTFile.h"
#include "support/HUTFork.h"
#include "support/TempDir.h"

#include <stdexcept>

GitRepo::GitRepo(std::string dir, const std::string& branch) : m_dir(std::move(dir)) {
    HUTFile::mkDirRecursive(m_dir);
    git({"init", "--initial-branch=" + branch});
}

GitRepo& GitRepo::write(const std::string& file, const std::string& content) {
    writeFile(m_dir + "/" + file, content);
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
    const std::string log = m_dir + ".log";
    fork.setProg("git", true);
    fork.setDir(m_dir);
    fork.setLogFile(log);
    fork.setTimeout(60);
    for (const char* arg : {"-c", "user.name=Test", "-c", "user.email=test@example.com"}) fork.addArg(arg);
    for (const std::string& arg : args) fork.addArg(arg);
    const int status = fork.launch(true, true, true, true);

    std::string output = readFile(log);
    HUTFile::rmRecursive(log);
    if (status != 0) throw std::runtime_error(fork.getCmdLineAsStr() + ": " + output);
    if (!output.empty() && output.back() == '\n') output.pop_back();
    return output;
}
