#pragma once

#include "plaz/base/HSCPlazReport.h"
#include "plaz/base/HSCPlazStoreLayout.h"
#include "support/HUTFile.h"

#include <string>
#include <utility>
#include <vector>

/// Where the repository puts what it fetches; removed at the end, whatever happens.
class HSCPlazFetchedFiles {
public:
    explicit HSCPlazFetchedFiles(std::string dir) : m_dir(std::move(dir)) {}
    ~HSCPlazFetchedFiles() { HUTFile::rmRecursive(m_dir); }
    HSCPlazFetchedFiles(const HSCPlazFetchedFiles&) = delete;
    HSCPlazFetchedFiles& operator=(const HSCPlazFetchedFiles&) = delete;

    const std::string& getDir() const { return m_dir; }
    std::string getFile(const std::string& relative) const { return m_dir + "/" + relative; }

    /// Whether a fetched file of a store is whole, and is one at all. @param problem  what is wrong with it is added
    static bool isCatalog(const std::string& file, HSCPlazReport& problem);

    /// @throws HEXAll what @p problem tells of a file that goes beyond a limit, which is all there is to tell
    static void requireWithinLimits(const HSCPlazReport& problem);

    /// Copies files to where they count, each whole and flushed in one step. Files of the same name, deeper in the
    /// repository, have been fetched with them and stay out.
    /// @return the directory that could not be written to; empty when all is well
    static std::string take(const std::string& source, const std::string& area, const std::vector<std::string>& files);
    /// Copies files into a directory of their own, by their number, from where moveIn() puts them into force.
    /// @return as take
    static std::string prepare(const std::string& source, const std::string& incoming,
                               const std::vector<std::string>& files);
    /// Moves such files to where they count; those that are there already are left out. @return as take
    static std::string moveIn(const HSCPlazStoreLayout& layout, const std::vector<std::string>& files);
    /// Moves one file to where it counts, or copies it where that is on another disk.
    static bool place(const std::string& fetched, const std::string& file);

private:
    std::string m_dir;
};
