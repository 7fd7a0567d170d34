#pragma once

#include "support/HostExport.h"

#include <cstdint>
#include <ctime>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// Files and directories, by name. What the disk says shows in the results; only getTemporaryName() throws for it.
///
/// What is made below the user's area (HUTEnv::getHDIAppDataDir) is at most for the group to read, whatever the
/// process's mask lets: directories rwxr-x---, files rw-r-----, programs rwxr-x---. Elsewhere the mask counts alone.
/// What is there keeps its rights. On Windows they follow from the directory.
///
/// RATIONALE: canonical names are absolute and free of "." and "..", but links in them stay as they are: the
/// installation lays links to the system's programs, and what stands beside such a link matters, not what stands
/// beside its target. Where links have to be followed, for containment, isBeneath() does it.
class HOST_API HUTFile {
public:
    /// What separates the parts of a name: "/" on every system, so that what is recorded reads the same everywhere.
    static const std::string& getDirSeparator();
    /// A name under which every program reads nothing. To some of them "/dev/null" is a place of
    /// their own.
    static const std::string& getNullDevice();

    static bool exists(const std::string& path);
    static bool isRegularFile(const std::string& path);
    static bool isDirectory(const std::string& path);
    /// What keeps a file or directory, there or not, from being written, as an end of a sentence: "its disk is full".
    /// Empty where that does not show.
    static std::string findWriteObstacle(const std::string& path);
    /// The file or directory exists and this user may write to it (into it).
    static bool isWriteable(const std::string& path);
    /// Seconds since the epoch; 0 when there is no such file.
    static std::time_t getLastMod(const std::string& path);

    /// Bytes that the file has, also while somebody writes to it; 0 when there is no such file.
    static std::uint64_t getSize(const std::string& path);
    /// A text that changes whenever the file is written or replaced; empty when there is no such file.
    static std::string getStamp(const std::string& path);
    /// A text that stays with a file or directory, whatever its name becomes and on whichever machine its disk is
    /// seen, and that nothing else on that disk has; empty when there is none.
    static std::string getIdentity(const std::string& path);

    /// Bytes that this user may still write on the disk of a file or directory; empty where that is unknown.
    static std::optional<std::uintmax_t> getFreeSpace(const std::string& path);

    /// Absolute, with "." and ".." resolved by name, in generic form; empty for an empty name.
    static std::string getCanonicalName(const std::string& path);
    /// The same in generic (forward-slash) form on every system; for comparisons.
    static std::string getNonNativeCanonicalName(const std::string& path);
    /// Whether two names lead to one file or directory on disk.
    static bool isAKA(const std::string& a, const std::string& b);

    /// Whether @p path, every link resolved as far as it exists, lies below @p root (or is it).
    /// A path whose links cannot be resolved does not.
    static bool isBeneath(const std::string& root, const std::string& path);
    /// The name with every link in it resolved as far as it exists, in generic form; empty where that is impossible.
    static std::string getRealName(const std::string& path);
    /// Whether two names lead to one place, or @p path to one below @p root, whichever letters the disk takes for one.
    /// By the names alone: links in them must have been resolved.
    static bool isNamedBeneath(const std::string& root, const std::string& path);

    /// Whether a file or directory, which must not be a link, is this user's: his own, or the system administrators'
    /// as long as nobody else may write to it (on Windows that is not looked at). Of a disk that gives users other
    /// names, such as a network drive, that name counts which it gives to a file that is made beside it for this.
    static bool isOwn(const std::string& path);
    /// Whether others than its owner may write to such a file or directory. False where the disk knows no rights that
    /// its owner could set, and on Windows, where that is not looked at.
    static bool isOpenToOthers(const std::string& path);

    /// Creates a directory with its parents; true when it is there afterwards.
    static bool mkDirRecursive(const std::string& dir);
    /// Creates a directory with its parents, or takes one that is there, and keeps all but its owner from it and from
    /// what is made in it, where the disk knows rights and lets its owner set them. True when it is there afterwards.
    static bool mkDirForOwner(const std::string& dir);
    /// Removes a file, a link (not its target) or a directory with all it holds, read-only entries included.
    /// True when it is gone afterwards.
    static bool rmRecursive(const std::string& path);
    /// Removes what lies in a directory except one name at its top. @return false when something could not be removed
    static bool rmEntriesExcept(const std::string& dir, const std::string& keptName);

    /// What a copy does with a target that exists: the host's option 3, copy over it.
    static constexpr int copyOver = 3;
    /// Copies one file with its permissions, as far as they may be given (on Windows its read-only mark). What leaves
    /// the user's area and is not for its owner alone has the rights of a new file. A link is copied as a link.
    static bool copyTo(const std::string& source, const std::string& dest, int option);
    /// Copies a file or a directory tree. Links are copied as links, never followed; one that stands in the way below
    /// @p dest is replaced. Pipes, sockets and devices are left out. False for a @p dest below @p source. After a
    /// failure @p dest may hold part of the copy.
    static bool copyToRecursive(const std::string& source, const std::string& dest, int option);
    /// Copies a directory tree, but gives the files that @p linkable accepts (by their path relative to @p source, in
    /// generic form) a second name instead of a second body where the file system can; copies them where it cannot.
    static bool cloneTree(const std::string& source, const std::string& dest,
                          const std::function<bool(const std::string& relative)>& linkable);

    /// Names of the entries of a directory, sorted, without "." and ".."; empty when it cannot be read.
    static std::vector<std::string> createFileIter(const std::string& dir);

    /// The same, but nothing when it cannot be read.
    static std::optional<std::vector<std::string>> readDirectory(const std::string& dir);

    /// Names of all that lies below a directory, relative to it and in generic form, without following links. What the
    /// entry @p skipped at its top holds is left out.
    static std::vector<std::string> listTree(const std::string& dir, const std::string& skipped = "");

    /// Writes a file whole: beside it, flushed, then renamed over it. The old file stays until the new one is complete.
    /// @param ownerOnly  readable by its owner alone
    /// @return false, with the old file untouched and nothing left beside it, when that failed
    static bool writeAtomically(const std::string& file, const std::string& content, bool ownerOnly = false);
    /// The same, but nothing waits for the disk: after a power failure neither the old file nor the new one may be
    /// whole.
    static bool writeUnflushed(const std::string& file, const std::string& content);
    /// Removes from a directory what processes that were killed while they wrote a file have left (".plaz-….tmp").
    /// Whoever calls it knows that nobody else is writing there. @return false when something of it stays
    static bool removeTemporaries(const std::string& dir);
    /// Waits until a file, or a directory with all that it holds, is on the disk itself, so that it outlives a power
    /// failure. What the file system does not keep there counts as done. @return false when the disk reports an error
    static bool flush(const std::string& path);
    /// The same for a file and the name that it has been given.
    static bool flushWithName(const std::string& file);
    /// Whether the disk of a file or directory that may be written can be told to keep what was written. Where it
    /// cannot, all of this goes on without.
    static bool canFlush(const std::string& path);

    /// Puts the finished directory @p fresh in the place of @p dest (which may be absent) in one step where the system
    /// can. @return false with @p dest as it was; on success nothing is left at @p fresh, except what of the old
    /// directory resists removal.
    static bool replaceDirectory(const std::string& fresh, const std::string& dest);
    /// The same, but what was at @p dest is at @p fresh afterwards, and the new names are flushed. Where the system
    /// cannot do it in one step, the old directory is at getAside(@p fresh) for a moment, and nothing at @p dest.
    static bool exchangeDirectories(const std::string& fresh, const std::string& dest);
    static std::string getAside(const std::string& fresh) { return fresh + ".old"; }

    /// Gives a file or directory another name on the same disk. A file of that name is replaced; one that another
    /// process holds open is tried again for a while where that stands in the way.
    static bool rename(const std::string& from, const std::string& to);

    /// A name in the system's temporary directory that nothing has yet; nobody can guess it.
    /// @param ending  what it ends in, such as ".log"
    /// @throws boost::filesystem::filesystem_error where the environment names a temporary directory that is none
    static std::string getTemporaryName(const std::string& ending = "");

    /// Makes an empty file, its owner's alone. @return false where something stands at that name already, be it a link
    static bool makeNew(const std::string& file);
    /// The same of a directory, whose parent must be there.
    static bool makeNewDir(const std::string& dir);

    /// Equal for two names exactly when the system's disks take one for the other, such as "Led" and "led".
    static std::string getNameKey(const std::string& name);
};
