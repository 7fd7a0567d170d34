#pragma once

#include "plaz/base/PlazExport.h"

#include <cstddef>
#include <string>

/// What the metadata files say of a hub, a store or an item alike.
class PLAZ_API HSCPlazBaseModel {
public:
    HSCPlazBaseModel() = default;
    virtual ~HSCPlazBaseModel() = default;
    HSCPlazBaseModel(const HSCPlazBaseModel&) = delete;
    HSCPlazBaseModel& operator=(const HSCPlazBaseModel&) = delete;

    const std::string& getName() const { return m_name; }
    void setName(const std::string& value) {
        m_name = value;
        if (m_isNameIndexed) noteNaming();
    }
    /// Tells that an index of names has taken up this one, so that a change of it counts.
    void indexName() { m_isNameIndexed = true; }
    /// How many of the names that were indexed this process has set. Whoever keeps an index of names learns from it
    /// that one may have changed.
    static std::size_t getNamings() { return s_namings; }
    /// Counts what gives an object another name without setting one.
    static void noteNaming() { ++s_namings; }
    /// Text shown to users.
    const std::string& getDisplayName() const { return m_displayName; }
    void setDisplayName(const std::string& value) { m_displayName = value; }
    const std::string& getDescription() const { return m_description; }
    void setDescription(const std::string& value) { m_description = value; }
    /// Where the repository lives.
    const std::string& getUrl() const { return m_url; }
    void setUrl(const std::string& value) { m_url = value; }
    /// File name of the metadata file, relative to the directory that it describes.
    const std::string& getMetadataFile() const { return m_metadataFile; }
    void setMetadataFile(const std::string& value) { m_metadataFile = value; }
    /// Folder of items (hub, store) or of the item's metadata file (item) inside the repository.
    const std::string& getItemRoot() const { return m_itemRoot; }
    void setItemRoot(const std::string& value) { m_itemRoot = value; }

private:
    inline static std::size_t s_namings = 0;

    bool m_isNameIndexed = false;
    std::string m_name;
    std::string m_displayName;
    std::string m_description;
    std::string m_url;
    std::string m_metadataFile;
    std::string m_itemRoot;
};
