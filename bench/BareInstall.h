#pragma once

#include <string>
#include <vector>

/// Runs a program to its end by posix_spawn, without input and output. @return its exit status
int runBare(const std::vector<std::string>& command, const std::string& dir,
            const std::vector<std::string>& environment);

/// Copies a working copy: objects as links, the rest byte by byte.
void copyIndexBare(const std::string& index, const std::string& staging);

/// The git commands of an installation in their order, on a fresh copy of the working copy, and nothing else.
/// @throws std::runtime_error when one of them fails
class BareInstall {
public:
    /// @param index        a complete working copy
    /// @param environment  the one in which the product runs git
    BareInstall(std::string git, std::string index, std::vector<std::string> environment)
        : m_git(std::move(git)), m_index(std::move(index)), m_environment(std::move(environment)) {}
    void run(const std::string& staging, const std::string& itemRoot, const std::string& commit) const;

private:
    void git(const std::vector<std::string>& args, const std::string& dir) const;

    std::string m_git;
    std::string m_index;
    std::vector<std::string> m_environment;
};
