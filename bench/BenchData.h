#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

/// A store as the hub ships it, and the repository behind it.
struct BenchStore {
    std::string name;
    std::size_t items = 0;
    std::string url = "https://hub.example.org/store.git";
    std::string commit = std::string(40, 'a'); ///< recorded for every item
};

namespace BenchData {

std::string itemName(std::size_t number);
/// "items/<name>".
std::string itemRoot(std::size_t number);
/// An item's metadata, about 1 KB: texts, keywords and categories.
/// @param dependencies  names of items of the store @p store
std::string itemMetadata(const std::string& store, const std::string& name,
                         const std::vector<std::string>& dependencies);

/// Writes a data root: plaz/plaz.json, plaz/plaz_config.json and for each store below plaz/storesdata/<name> its
/// store.json, catalog.json and one items/<name>/item.json per item. Every fourth item depends on three others.
void writeDataRoot(const std::string& dir, const std::vector<BenchStore>& stores);

/// Makes a bare repository: one commit holds every item's metadata and content, the next one the store's metadata and
/// its catalog, which names the first for each item.
/// @param contentBytes  size of all content together, which cannot be compressed; 0 for a line of text each
/// @return the first commit
/// @throws std::runtime_error when git fails
std::string makeRepository(const std::string& dir, const std::string& store, std::size_t items,
                           std::size_t contentBytes);

/// Adds a commit that gives these files, by path, their content.
/// @throws std::runtime_error when git fails
void addCommit(const std::string& dir, const std::map<std::string, std::string>& files);

void writeFile(const std::string& file, const std::string& content);

} // namespace BenchData
