#pragma once

#include "plaz/base/PlazExport.h"

#include <string>

/// Where git works for one store: its working copy and its staging directory. Unlike the store's area these can always
/// be named.
class PLAZ_API HSCPlazWorkLayout {
public:
    /// Nowhere: every name is empty.
    HSCPlazWorkLayout() = default;
    /// In generic form.
    explicit HSCPlazWorkLayout(std::string work) : m_work(std::move(work)) {}

    std::string getIndex() const { return below(below(m_work, hiddenDir), ".index"); }
    std::string getStaging() const { return below(m_work, stagingDir); }
    /// A link that stands where one of these, or what holds them, should; empty when there is none. The area itself may
    /// be one.
    std::string findWorkLink() const;

    static constexpr const char* hiddenDir = ".plaz";
    static constexpr const char* stagingDir = ".staging";

protected:
    static std::string below(const std::string& dir, const char* name) {
        return dir.empty() ? std::string() : dir + "/" + name;
    }

private:
    std::string m_work;
};

/// Where one store keeps what on this machine: every folder and file of its area, each named in this one place.
///
///     <area>/<item root>[/<revision>]           an installed item
///     <area>/<metadata file>, <catalog file>    the catalog that was refreshed last; ".done" beside it marks it whole
///     <area>/.plaz/.catalog                     metadata and change logs of the catalog's items
///     <area>/.plaz/plaz_local_db.json           what is installed
///     <area>/.plaz/plaz_known_catalog.json      what a large catalog lists by these names
///     <area>/.plaz/.trees                       what the files of installed items should be
///     <area>/.plaz/.incoming                    files on their way in and out; gone between commands
///     <work>/.plaz/.index                       the working copy; ".done" in it marks it complete
///     <work>/.staging                           where a checkout is made; gone between commands
///
/// <work> is the area, but for a store without a directory of its own it may lie elsewhere.
class PLAZ_API HSCPlazStoreLayout : public HSCPlazWorkLayout {
public:
    static constexpr const char* doneMarker = ".done";
    static constexpr const char* gitDir = ".git";
    static constexpr const char* databaseFile = "plaz_local_db.json";
    /// Metadata of items, relative to the area; ends in "/".
    static constexpr const char* catalogFolder = ".plaz/.catalog/";
    /// An item's change log, in its folder.
    static constexpr const char* changeLogFile = "changelog.txt";

    /// Nowhere: every name is empty.
    HSCPlazStoreLayout() = default;
    /// Both in generic form.
    HSCPlazStoreLayout(std::string area, std::string work)
        : HSCPlazWorkLayout(std::move(work)), m_area(std::move(area)) {}

    const std::string& getArea() const { return m_area; }
    /// A directory's place in the area; empty for one that does not lie there.
    std::string getFolderOf(const std::string& dir) const;
    std::string getHiddenDir() const { return below(m_area, hiddenDir); }
    /// Ends in "/".
    std::string getCatalogDir() const { return below(m_area, catalogFolder); }
    std::string getDatabase() const { return below(getHiddenDir(), databaseFile); }
    std::string getKnownCatalog() const { return below(getHiddenDir(), "plaz_known_catalog.json"); }
    /// Where the trees of installed items are kept.
    std::string getTreesDir() const { return below(getHiddenDir(), ".trees"); }
    /// What an installation keeps of its files.
    /// @param folder  the item's, relative to the area; folders lie in one another, so that no name made of theirs
    /// would
    ///                be safe
    std::string getTreeFile(const std::string& folder, const std::string& commit) const;
    std::string getIncoming() const { return below(getHiddenDir(), ".incoming"); }
    /// As findWorkLink(), of the folders that the area holds beside what is installed.
    std::string findAreaLink() const;
    /// Either.
    std::string findLink() const;
    /// The hidden folder that a database lies in, where that is a link: what lies behind it is none of the store's.
    /// Empty where it is none.
    static std::string findLinkAbove(const std::string& database);

    /// Whether what a directory holds (a working copy, a catalog) came whole. @param dir  empty: no
    static bool isComplete(const std::string& dir);
    /// @return false when that could not be written
    static bool markComplete(const std::string& dir);
    /// Taken away first, half a removal counts as nothing.
    static void unmark(const std::string& dir);
    /// Removes a folder that the hub keeps; what resists goes beside it, under a name by which it is told of and
    /// removed later. @return false where neither can be done
    static bool removeOrPutAside(const std::string& dir);
    /// What the names of such folders begin with.
    static constexpr const char* oldFiles = ".old-files-";

private:
    std::string m_area;
};
