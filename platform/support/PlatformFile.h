#pragma once

#include "support/HIOStatus.h"
#include "support/PlatformRights.h"

#include <boost/filesystem/path.hpp>

#include <cstdint>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

/// What the portable sources of the host need from the system about files.
namespace platform {

/// As HUTFile::getNullDevice() says.
extern const std::string nullDevice;

/// The name in the form in which calls of the system and of libraries take it at any length.
boost::filesystem::path toSystemName(const std::string& name);

/// Whether the system would read less of a text than there is.
inline bool holdsNull(const std::string& text) {
    return text.find('\0') != std::string::npos;
}

/// The name from the root on, as the system understands it; empty for an empty name, or where the current directory is
/// wanted and gone. "." and ".." may be left in it.
std::string makeAbsolute(const std::string& name);

/// As HUTFile::getCanonicalName() says.
std::string getCanonicalName(const std::string& path);

/// As HUTFile::getNameKey() says.
std::string getNameKey(const std::string& name);

/// A directory held open, so that names below it are resolved by the system without leaving it.
class OpenDirectory {
public:
    /// @param dir  may be missing; every read then gives `missing`, and `unreadable` where it could not be opened
    explicit OpenDirectory(const std::string& dir);
    ~OpenDirectory();
    OpenDirectory(const OpenDirectory&) = delete;
    OpenDirectory& operator=(const OpenDirectory&) = delete;

    /// Reads the file as it stands on disk; @p content is replaced, and undefined unless the result is ok.
    HIOStatus read(const std::string& relative, std::string& content, std::uint64_t maxSize) const;

private:
    std::string m_dir;                       ///< as it was given, or with its links resolved
    [[maybe_unused]] std::intptr_t m_handle; ///< of the system, where it keeps one for this
    HIOStatus m_state = HIOStatus::missing;  ///< of the directory
};

/// Reads a whole file as it stands on disk; @p content is replaced, and undefined unless the result is ok.
/// @param throughLink  false: a link in its place is unreadable
HIOStatus readFile(const std::string& file, std::string& content, std::uint64_t maxSize, bool throughLink = true);
/// The first @p size bytes of a regular file, fewer when it is shorter or cannot be read.
std::string readStart(const std::string& file, std::size_t size);

/// What is known of a file before its first byte is read.
struct FileFacts {
    std::uint64_t size = 0;
    std::optional<bool> isExecutable; ///< whether its owner may run it; empty where disks do not know that
};

/// Reads a regular file part by part, however large it is: @p begin is called first, then @p take with all it holds.
/// One that becomes longer or shorter meanwhile is unreadable.
HIOStatus readInParts(const std::string& file, const std::function<void(const FileFacts& facts)>& begin,
                      const std::function<void(std::string_view part)>& take);

/// Whether this user may write to the file (make entries in the directory).
bool isWriteable(const std::string& path);
/// Whether that is because nothing may be written to its disk. False where nobody knows.
bool isOnReadOnlyDisk(const std::string& path);
/// A regular file that may be run.
bool isProgram(const std::string& path);

/// As HUTFile::getSize says.
std::uint64_t getSize(const std::string& path);

/// As HUTFile::getStamp says.
std::string getStamp(const std::string& path);

/// As HUTFile::getIdentity says.
std::string getIdentity(const std::string& path);

/// As HUTFile::flush says.
bool flush(const std::string& path);
/// As HUTFile::canFlush says.
bool canFlush(const std::string& path);
/// The same of the names alone that stand in a directory.
bool flushNames(const std::string& dir);

/// The absolute path with every link in it resolved; empty, with @p error set, when it leads to nothing.
std::string resolveLinks(const std::string& path, std::error_code& error);

/// As HUTFile::isBeneath() says.
bool isBeneath(const std::string& root, const std::string& path);
/// As HUTFile::getRealName() says.
std::string getRealName(const std::string& path);
/// As HUTFile::readDirectory() says.
std::optional<std::vector<std::string>> listEntries(const std::string& dir);

/// As HUTFile::rmRecursive() says.
bool removeTree(const std::string& path);
/// As HUTFile::rmEntriesExcept() says.
bool removeEntriesExcept(const std::string& dir, const std::string& keptName);

/// Makes one directory. @return false, also when it is there
bool makeDirectory(const std::string& dir, Rights rights);

/// Keeps all but its owner from a directory that is there, and from what is made in it later, where that is possible.
void keepForOwner(const std::string& dir);

/// As HUTFile::copyTo() says, but only to where nothing stands. @return false, with nothing left there, when that
/// failed or something stands there
/// @param limit  as limitOfCopy() says
bool copyFile(const std::string& source, const std::string& dest, std::optional<Rights> limit);

/// Gives a file or directory another name. A file there is replaced; one that somebody holds open is tried again for a
/// while where that stands in the way.
bool rename(const std::string& from, const std::string& to);

/// As HUTFile::makeNew says.
bool makeNew(const std::string& file);
/// As HIOStream::openForWriting says. @param rights  of a file that is made
std::ofstream openForWriting(const std::string& file, std::ios::openmode mode, Rights rights);

/// Writes a file whole, as HUTFile::writeAtomically and writeUnflushed say. One that replaces another has the other's
/// rights, unless it is for its owner.
bool writeWhole(const std::string& file, const std::string& content, Rights rights, bool isFlushed);

/// Lets two entries change places in one step. @return false, with nothing changed, where the system cannot do that
bool exchange(const std::string& a, const std::string& b);

} // namespace platform
