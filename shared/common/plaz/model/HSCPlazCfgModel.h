#pragma once

#include "plaz/model/HSCPlazRepoCfgModel.h"

#include <memory>
#include <string>
#include <vector>

/// What the configuration file says. A fresh one holds the defaults.
class HSCPlazCfgModel {
public:
    int getMajor() const { return m_major; }
    void setMajor(int value) { m_major = value; }
    int getMinor() const { return m_minor; }
    void setMinor(int value) { m_minor = value; }
    /// Folder of the hub inside a data root.
    const std::string& getRoot() const { return m_root; }
    void setRoot(const std::string& value) { m_root = value; }
    /// Folder of the stores' shipped data inside the hub's folder.
    const std::string& getStoresRoot() const { return m_storesRoot; }
    void setStoresRoot(const std::string& value) { m_storesRoot = value; }
    /// File name of the hub metadata file.
    const std::string& getMetadataFile() const { return m_metadataFile; }
    void setMetadataFile(const std::string& value) { m_metadataFile = value; }
    const std::string& getGDADataRoot() const { return m_gdaDataRoot; }
    void setGDADataRoot(const std::string& value) { m_gdaDataRoot = value; }
    const std::string& getAppDataRoot() const { return m_appDataRoot; }
    void setAppDataRoot(const std::string& value) { m_appDataRoot = value; }
    /// The hub's own repository; null when the file names none. What is set of it, or of a store's, counts from the
    /// next command to that server on.
    HSCPlazRepoCfgModel* getPlazRepoCfgModel() const { return m_plazRepo.get(); }
    void setPlazRepoCfgModel(std::unique_ptr<HSCPlazRepoCfgModel> value) { m_plazRepo = std::move(value); }
    /// The stores' repositories, in file order.
    const std::vector<std::unique_ptr<HSCPlazRepoCfgModel>>& getStoreRepoCfgModels() const { return m_storeRepos; }
    void addStoreRepoCfgModel(std::unique_ptr<HSCPlazRepoCfgModel> value) { m_storeRepos.push_back(std::move(value)); }

private:
    int m_major = 0;
    int m_minor = 0;
    std::string m_root = "plaz";
    std::string m_storesRoot = "storesdata";
    std::string m_metadataFile = "plaz.json";
    std::string m_gdaDataRoot;
    std::string m_appDataRoot;
    std::unique_ptr<HSCPlazRepoCfgModel> m_plazRepo;
    std::vector<std::unique_ptr<HSCPlazRepoCfgModel>> m_storeRepos;
};
