#pragma once

#include "support/HCRapidJsonReadWriteUtils.h"

#include <cstddef>
#include <cstdint>
#include <string>

class HPAParamMgr;

/// How much a store or a hub may bring: the one place where that stands, and the parameters that set it. What goes
/// beyond is not used, whoever made it, so that nobody's memory is another one's to fill. A parameter of 0 or less sets
/// no limit.
class HSCPlazLimits {
public:
    /// What a file describes: many things (a hub, a store, a catalog, a database), or one item.
    enum class File { list, item };

    /// The limits as the parameters say now.
    HSCPlazLimits();
    static void registerParams(HPAParamMgr& params);

    /// Bytes of one file.
    std::uint64_t getFileSize(File kind) const { return kind == File::list ? m_listFile : m_itemFile; }
    /// Bytes of all item metadata files of a store, and of the descriptions that are made of them.
    std::uint64_t getItemFilesSize() const;
    /// Items of a store, each revision as one where the store keeps several.
    std::size_t getItemCount() const { return m_items; }
    /// Revisions that a catalog lists for all its items.
    std::size_t getRevisionCount() const;
    /// What a file's JSON may hold; which members are names and long lists is for the readers to add.
    HCRapidJsonLimits getJson(File kind) const;

    /// What is wrong with a file that is too large: "it is larger than 128 MB, the limit of ...".
    std::string describeFile(File kind) const;
    /// The same of the first metadata file of an item that is too much.
    std::string describeItemFiles() const;
    std::string describeItems() const;
    std::string describeRevisions() const;
    std::string describe(HCRapidJsonLimits::Excess excess, File kind) const;

private:
    std::uint64_t m_listFile;
    std::uint64_t m_itemFile;
    std::size_t m_items;
    std::size_t m_listEntries;
    std::size_t m_text;
    std::size_t m_name;
};
