#pragma once

#include "support/HUTFile.h"

#include <string>
#include <utility>

/// A directory that is gone when its block is left, by whatever way, unless it was to be kept.
class HSCPlazGitRemoved {
public:
    explicit HSCPlazGitRemoved(std::string dir) : m_dir(std::move(dir)) {}
    ~HSCPlazGitRemoved() {
        if (!m_kept) HUTFile::rmRecursive(m_dir);
    }
    HSCPlazGitRemoved(const HSCPlazGitRemoved&) = delete;
    HSCPlazGitRemoved& operator=(const HSCPlazGitRemoved&) = delete;
    void keep() { m_kept = true; }

private:
    std::string m_dir;
    bool m_kept = false;
};
