#include "plaz/model/repo/git/HSCPlazGitRepositories.h"

#include "plaz/model/repo/git/HSCPlazGitRunner.h"

#include <boost/filesystem/path.hpp>

void HSCPlazGitRepositories::unpack(const std::string& bundle, const std::string& dir) {
    const std::string parent = boost::filesystem::path(dir).parent_path().generic_string();
    HSCPlazGitRunner::run({"clone", "--quiet", "--bare", bundle, dir}, parent, true);
}

void HSCPlazGitRepositories::commit(const std::string& dir, const std::string& file, const std::string& message) {
    HSCPlazGitRunner::run({"init"}, dir, true);
    HSCPlazGitRunner::run({"add", "--", file}, dir, true);
    HSCPlazGitRunner::run({"commit", "--quiet", "--no-gpg-sign", "--message", message}, dir, true);
}
