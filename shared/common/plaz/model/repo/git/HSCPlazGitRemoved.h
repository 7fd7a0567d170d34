#pragma once

#include "support/HUTFile.h"

#include <string>
#include <utility>

/// A file or directory that is gone when its block is left, by whatever way, unless it was to be kept.
class HSCPlazGitRemoved {
public:
    explicit HSCPlazGitRemoved(std::string name) : m_name(std::move(name)) {}
    ~HSCPlazGitRemoved() {
        if (!m_kept) HUTFile::rmRecursive(m_name);
    }
    HSCPlazGitRemoved(const HSCPlazGitRemoved&) = delete;
    HSCPlazGitRemoved& operator=(const HSCPlazGitRemoved&) = delete;
    const std::string& getName() const { return m_name; }
    void keep() { m_kept = true; }

private:
    std::string m_name;
    bool m_kept = false;
};
