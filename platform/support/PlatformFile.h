#pragma once

#include "support/HIOStream.h"

#include <cstdint>
#include <string>
#include <system_error>

/// What the portable sources of the host need from the system about files.
namespace platform {

/// A directory held open, so that names below it are resolved by the system without leaving it.
class OpenDirectory {
public:
    /// @param dir  may be missing; every read then gives `missing`
    explicit OpenDirectory(const std::string& dir);
    ~OpenDirectory();
    OpenDirectory(const OpenDirectory&) = delete;
    OpenDirectory& operator=(const OpenDirectory&) = delete;

    /// Reads the file as it stands on disk; @p content is replaced, and undefined unless the result is ok.
    HIOStream::Status read(const std::string& relative, std::string& content) const;

private:
    std::string m_dir;
    std::intptr_t m_handle;
};

/// Reads a whole file as it stands on disk; @p content is replaced, and undefined unless the result is ok.
HIOStream::Status readFile(const std::string& file, std::string& content);
/// The first @p size bytes of a regular file, fewer when it is shorter or cannot be read.
std::string readStart(const std::string& file, std::size_t size);

/// Whether this user may write to the file (make entries in the directory).
bool isWriteable(const std::string& path);

/// As HUTFile::getStamp says.
std::string getStamp(const std::string& path);

/// The absolute path with every link in it resolved; empty, with @p error set, when it leads to nothing.
std::string resolveLinks(const std::string& path, std::error_code& error);

/// Removes a file, a link (not its target) or a directory with all it holds, as long as nothing resists.
/// @return false when something may be left
bool removeTree(const std::string& path);

/// Writes a file whole, as HUTFile::writeAtomically says.
bool writeAtomically(const std::string& file, const std::string& content, bool ownerOnly);

/// Lets two entries change places in one step. @return false, with nothing changed, where that cannot be done
bool exchange(const std::string& a, const std::string& b);

} // namespace platform
