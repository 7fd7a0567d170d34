#pragma once

#include <string>
#include <vector>

/// A real repository in a directory of the test's, driven by the system's git in an environment of its own.
/// A command that fails throws std::runtime_error with git's words.
class GitRepo {
public:
    /// Creates the directory with an empty repository whose first branch is @p branch.
    explicit GitRepo(std::string dir, const std::string& branch = "master");

    const std::string& getDir() const { return m_dir; }
    /// Writes a file into the working tree, with its directories.
    GitRepo& write(const std::string& file, const std::string& content);
    /// Commits all there is. @return the commit's id
    std::string commit();
    /// Runs git in the repository. @return its output without the last line end
    std::string git(const std::vector<std::string>& args) const;

private:
    std::string m_dir;
};
