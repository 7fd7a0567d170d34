#pragma once

#include "plaz/base/PlazExport.h"

#include <map>
#include <memory>
#include <set>
#include <string>

class HSCPlaz;
class HSCPlazModel;
class HSCPlazPathMgr;
class HSCPlazQStore;
class HSCPlazQStoreModel;
class HSCPlazStoreLayout;
class HSCPlazReport;

/// Records, per store, what is installed, so that the next process knows without asking git.
/// Nothing here throws for a bad file: it is reported and read as far as it goes.
class PLAZ_API HSCPlazLocalDBMgr {
public:
    /// Takes over whether the host runs in regression mode: then nothing is saved and every product check passes.
    HSCPlazLocalDBMgr();

    /// Reads @p file, if it is there and a regular file, into @p model.
    void init(const std::string& file, HSCPlazModel* model);
    /// The same.
    void load(HSCPlazModel* model, const std::string& file);

    /// The same as init(); what is wrong with the file is added to the report, and nothing is sent.
    void read(const std::string& file, HSCPlazModel& model, HSCPlazReport& report);

    /// Writes the store's database whole: its own file, else @p file, else the hub's, else the default one.
    /// In regression mode, for a null store and for a store that is not product specific nothing is written.
    /// Sends Msg::databaseNotSaved when the file cannot be written; the old one then stays.
    /// @return false when the file could not be written
    bool save(HSCPlaz& hub, HSCPlazQStore* store, std::string file);
    bool save(HSCPlaz* hub, HSCPlazQStore* store, std::string file);

    /// Whether a database was written by the running product and release; always so in regression mode.
    bool isValidForProductAndRelease(const std::string& file) const;

    /// What became of a store's database at start-up.
    enum class Merge {
        nothing,      ///< there is none, or it records nothing of the store
        merged,       ///< what it records of the store is in the model
        foreign,      ///< another product or release wrote it; it was left alone
        ofOtherStore, ///< it records another store; it was left alone
        damaged,   ///< reported; what can be read of it is in the model, and the next save keeps it beside the new one
        unreadable ///< reported; nothing is written there until it can be read
    };
    /// Puts what @p file records of the store into its model: installed revisions become installed, and those that the
    /// catalog no longer lists are added, described by what the catalog says of the item. Records whose names would
    /// lead out of the store's area are refused (Msg::itemRefused). What is to be told is added to the report.
    Merge merge(const std::string& file, HSCPlazQStoreModel& store, const HSCPlazPathMgr& paths, HSCPlazReport& report);

    /// The store as the database of the running product and release records it, if it records items of it; else null.
    std::shared_ptr<HSCPlazQStoreModel> findRecord(const std::string& file, const std::string& store) const;

    /// Items had been installed there, and their record is gone. Where none is written none can be.
    bool isGone(const HSCPlazStoreLayout& layout) const;
    /// Whether another process has written the database since it was merged or saved here, or it could not be read
    /// then.
    bool hasChanged(const std::string& file) const;
    /// Looks whether it can be read now; what is missing is no obstacle.
    bool canBeRead(const std::string& file);
    /// It could not be read when that was tried last.
    bool isUnreadable(const std::string& file) const { return m_unreadable.count(file) != 0; }

    /// Records were lost: a database was damaged, or is gone although items had been installed. Who asked for an item
    /// or needs it may have stood there.
    bool hasLostRecords() const { return m_hasLost; }

    /// Layout version that is written.
    const std::string& getMajorVersion() const { return m_major; }
    const std::string& getMinorVersion() const { return m_minor; }
    void setMajorVersion(const std::string& value) { m_major = value; }
    void setMinorVersion(const std::string& value) { m_minor = value; }

    /// The same as save(); the file that could not be written comes as the result, and nothing is sent. Empty when all
    /// is well.
    std::string write(const HSCPlaz& hub, HSCPlazQStore& store);

    /// Takes over the layout version that a database carries; empty texts change nothing.
    void takeVersion(const std::string& major, const std::string& minor);

private:
    std::string write(HSCPlazQStore& store, const std::string& file);

    bool m_regressionMode;
    std::set<std::string> m_damaged;
    std::set<std::string> m_unreadable;
    bool m_hasLost = false;
    std::map<std::string, std::string> m_stamps; // of the databases as they were read or written last
    std::string m_major = "1";
    std::string m_minor = "0";
};
