#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

class HSCPlazQItemModel;

/// What a task is about to do to one item, or to a store's catalog.
struct HSCPlazPendingChange {
    std::string store;
    /// Null where it is about the catalog. The item as it will be recorded; of one that goes, as it was.
    std::shared_ptr<HSCPlazQItemModel> item;
    bool isInstalled = false; ///< afterwards
    /// Of the directory that will be in the item's place (HUTFile::getIdentity); empty where its files stay.
    std::string identity = {};
    /// Of a catalog, relative to the store's area. They lie in its incoming directory, by their number.
    std::vector<std::string> files = {};
    /// The area that a store is about to move to, or in which the descriptions of its catalog are about to be replaced.
    /// Nothing of a move counts until the place is recorded.
    std::string place = {};
    /// Where the item's files were before, if that is another directory, and of which commit. They go once the change
    /// is recorded.
    std::string former = {}, formerCommit = {};
    /// Of the store, below which the item's directories, or the catalog's files, are.
    std::string area = {};
};

/// The note of a change under way. It is there from before the first file of a task changes its place until all that
/// belongs to the task is done, so that whoever finds it knows that a task was cut short, and how far it had come. It
/// belongs to whoever holds the hub's lock.
class HSCPlazChangeNote {
public:
    /// Identity in the note of a change that was announced and does not happen.
    static constexpr const char* withdrawn = "none";

    /// @param file  need not exist
    explicit HSCPlazChangeNote(std::string file) : m_file(std::move(file)) {}

    const std::string& getFile() const { return m_file; }
    bool exists() const;
    /// In the place of an earlier one. @return false when it could not be written
    bool write(const HSCPlazPendingChange& change) const { return prepare(change) && flush(); }
    /// The same, but it outlives a power failure only after flush(), so that the disk is waited for once for the note
    /// and for the files of which it tells. A note that is not whole says nothing.
    bool prepare(const HSCPlazPendingChange& change) const;
    bool flush() const;
    /// A note that is gone, or says nothing that can be used, gives a change of nothing.
    /// @return empty where it cannot be read now
    std::optional<HSCPlazPendingChange> read() const;
    bool forget() const;

private:
    std::string m_file;
};
