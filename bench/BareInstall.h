#pragma once

#include "BareGit.h"

#include <string>
#include <utility>

/// The git commands of an installation in their order, on a fresh copy of the working copy, and nothing else.
class BareInstall {
public:
    /// @param index  a complete working copy
    explicit BareInstall(std::string index) : m_index(std::move(index)) {}
    /// @throws std::runtime_error when a command fails
    void run(const std::string& staging, const std::string& itemRoot, const std::string& commit);

private:
    BareGit m_git;
    std::string m_index;
};
