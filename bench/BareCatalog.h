#pragma once

#include "BareGit.h"

#include <cstddef>
#include <string>

/// The git commands of catalog work in their order, with the copying and reading that they are run for: what is checked
/// out is copied to its place, then each file is read once.
class BareCatalog {
public:
    /// @param area  directory of the store's working copy and catalog
    BareCatalog(std::string area, std::string url, std::size_t items);

    /// Both steps: the catalog, then the items' descriptions. Makes the working copy when there is none.
    /// @throws std::runtime_error when a command fails
    void refresh();
    void check();
    void fetch() { m_git.run({"fetch"}, m_index); }

    /// Turns a copy of the working copy into one that has a detached head and no remote-tracking branch.
    /// @return the copy, in a working directory of its own
    std::string copyDetached() const;
    void fetchIn(const std::string& workingCopy) { m_git.run({"fetch"}, workingCopy); }

private:
    void createIndex();
    void fetchCatalog();
    void fetchDescriptions();
    void checkOut(const std::string& patterns);
    void moveHead() const;

    BareGit m_git;
    std::string m_area;
    std::string m_index;
    std::string m_staging;
    std::string m_url;
    std::size_t m_items;
};
