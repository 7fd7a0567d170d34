#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

using Names = std::vector<std::string>;

/// A directory of the test's own below $TMPDIR, removed with all it holds at the end.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    /// Absolute, links resolved.
    const std::string& path() const { return m_path; }
    /// The directory's entry @p relative, which need not exist.
    std::string path(const std::string& relative) const { return m_path + "/" + relative; }
    /// Writes a file below the directory, with its parents. @return its path
    std::string write(const std::string& relative, const std::string& content) const;
    /// Creates a directory below the directory, with its parents. @return its path
    std::string makeDir(const std::string& relative) const;

private:
    std::string m_path;
};

/// Changes variables of the environment and puts them back at the end.
class EnvGuard {
public:
    EnvGuard() = default;
    ~EnvGuard();
    EnvGuard(const EnvGuard&) = delete;
    EnvGuard& operator=(const EnvGuard&) = delete;

    void set(const std::string& name, const std::optional<std::string>& value);
    void unset(const std::string& name) { set(name, std::nullopt); }

private:
    std::map<std::string, std::optional<std::string>> m_old;
};

/// @p text with each "%" replaced by the next value.
std::string filled(const std::string& text, const std::vector<std::string>& values);

/// Writes a file, with its parents. @return its path
std::string writeFile(const std::string& file, const std::string& content);

/// What a file holds; empty when it cannot be read.
std::string readFile(const std::string& file);
