#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

/// Runs a program to its end by posix_spawn, without input and output. @return its exit status
int runBare(const std::vector<std::string>& command, const std::string& dir,
            const std::vector<std::string>& environment);

/// Copies a working copy: objects as links, the rest byte by byte.
void copyIndexBare(const std::string& index, const std::string& staging);

/// The program that the product starts as git, with the environment in which it starts it, and nothing around it.
class BareGit {
public:
    BareGit();
    /// @throws std::runtime_error when the command fails
    void run(const std::vector<std::string>& args, const std::string& dir);
    /// As the product runs what speaks to the remote or writes files: without certificates before, with them after.
    void runBracketed(const std::vector<std::string>& args, const std::string& dir);
    void configure(const std::string& key, const std::string& value, const std::string& dir);
    /// Restricts the next checkout to what matches the lines of @p patterns.
    void select(const std::string& patterns, const std::string& dir);

private:
    std::string m_program;
    std::map<std::pair<std::string, std::string>, std::vector<std::string>> m_environments;
};
