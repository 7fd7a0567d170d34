#pragma once

#include "support/HUTDigest.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The files of one item as its repository has them at one commit, and what of them an installed item has kept. Knows
/// no network and no repository: it is read from git's listing once, kept in a file, and compared with what is on disk.
///
/// Line ends and contents are compared as they are, for no filter applies to what the hub checks out. A link of the
/// repository is a plain file that holds its target, as everywhere in the hub. What the hub does not install is not
/// there: submodules, and ".done" at the item's top.
class HSCPlazItemTree {
public:
    struct Entry {
        std::string path; ///< relative to the item's folder
        std::string mode; ///< "100644", "100755" for a program, or "120000" for a link
        std::string id;   ///< of the content: git's name of the object
    };

    /// Files by their path relative to the item's folder, sorted.
    struct Differences {
        std::vector<std::string> changed; ///< another content, another right to run it, or something else in its place
        std::vector<std::string> missing; ///< not there
        std::vector<std::string> additional; ///< there, but not in the tree
        /// Nobody can say: files that cannot be read, and directories that cannot be listed ("." for the item's
        /// folder).
        std::vector<std::string> unreadable;

        bool areNone() const;
    };

    /// Reads what "git ls-tree -r -z --full-tree COMMIT ROOT" prints.
    /// @param commit   the one that was listed, as it is recorded of the item
    /// @param root     the item's folder in the repository; empty when the item is all of it
    /// @param problem  why there is no result, as an end of a sentence: what is listed "is no listing of git",
    ///                 "holds no files", or "holds "x/../y", which ..."
    /// @return empty for a listing that is cut off or damaged, that holds nothing, or that names a path that might lead
    ///         elsewhere: with an empty component, ".", "..", ".git" in any case, or not in @p root
    static std::optional<HSCPlazItemTree> parse(std::string_view lsTree, const std::string& commit,
                                                const std::string& root, std::string& problem);

    /// Reads what write() wrote. @return empty, for "not known", when the file is missing, damaged, foreign, of a
    /// folder outside or about another commit
    static std::optional<HSCPlazItemTree> read(const std::string& file, const std::string& commit);
    /// Writes the tree to a file of its own, whole or not at all; makes its directory. The file holds a line that names
    /// its format, the digest of all that follows, the commit, the folder in the repository, and the files as git lists
    /// them. Nothing waits for the disk.
    /// @return false, with an old file untouched, when that failed
    bool write(const std::string& file) const;

    /// The same without the file: what write() puts into it, and what can be read of that.
    std::string toText() const;
    static std::optional<HSCPlazItemTree> fromText(std::string_view text, const std::string& commit);

    /// As it was given to parse().
    const std::string& getCommit() const { return m_commit; }
    const std::string& getRoot() const { return m_root; }
    /// Sorted by path.
    const std::vector<Entry>& getEntries() const { return m_entries; }

    /// Reads every file below an item's folder. Directories, which git does not know, are left out. Whether a file may
    /// be run counts where disks know that.
    /// @param dir  the item's folder; when it is missing, so are its files
    Differences compare(const std::string& dir) const;

    /// A folder whose tree is not known: all its files are additional.
    static Differences listAll(const std::string& dir);

    /// The quick look, which opens nothing. @return the files that are missing; as changed, those that are none any
    /// more or have lost all their content; those of which nobody can say. A link to a directory is followed here.
    Differences findLost(const std::string& dir) const;

private:
    HSCPlazItemTree(std::string commit, std::string root, HUTDigest::Kind kind, std::vector<Entry> entries)
        : m_commit(std::move(commit)), m_root(std::move(root)), m_kind(kind), m_entries(std::move(entries)) {}

    std::string m_commit;
    std::string m_root;
    HUTDigest::Kind m_kind;
    std::vector<Entry> m_entries;
};
