#pragma once

#include "plaz/base/PlazExport.h"
#include "plaz/model/HSCPlazBaseModel.h"
#include "plaz/model/HSCPlazQStoreModel.h"

#include <memory>
#include <string>
#include <vector>

/// What the hub's metadata file says: the stores that the hub offers, and where the hub itself lives.
class PLAZ_API HSCPlazModel : public HSCPlazBaseModel {
public:
    HSCPlazModel() = default;
    ~HSCPlazModel() override;

    /// Folder name of the hub inside a data root.
    const std::string& getRoot() const { return m_root; }
    void setRoot(const std::string& value) { m_root = value; }
    /// The hub metadata file that was read.
    const std::string& getLocalRoot() const { return m_localRoot; }
    void setLocalRoot(const std::string& value) { m_localRoot = value; }
    /// Where the hub's own metadata repository lives.
    const std::string& getRemoteRepository() const { return m_remoteRepository; }
    void setRemoteRepository(const std::string& value) { m_remoteRepository = value; }
    /// Revision of the hub metadata.
    const std::string& getCommitId() const { return m_commitId; }
    void setCommitId(const std::string& value) { m_commitId = value; }
    const std::string& getLocalDBFilePath() const { return m_localDbFilePath; }
    void setLocalDBFilePath(const std::string& value) { m_localDbFilePath = value; }
    /// A hub metadata file was found.
    bool hasMetadataFile() const { return m_hasMetadataFile; }
    void setHasMetadataFile(bool value) { m_hasMetadataFile = value; }
    /// Which stores it lists is not known: its file could not be read, or is damaged.
    bool isUnread() const { return m_unread; }
    void setIsUnread(bool value) { m_unread = value; }

    /// The store models in the order in which they were added.
    const std::vector<std::shared_ptr<HSCPlazQStoreModel>>& getStores() const { return m_stores; }
    /// First store model of that name; null when there is none.
    HSCPlazQStoreModel* findStore(const std::string& name) const;
    /// Appends a store model; the model owns it, together with another hub model where it is shared.
    HSCPlazQStoreModel* addStore(std::shared_ptr<HSCPlazQStoreModel> store);

private:
    std::string m_root;
    std::string m_localRoot;
    std::string m_remoteRepository;
    std::string m_commitId;
    std::string m_localDbFilePath;
    std::vector<std::shared_ptr<HSCPlazQStoreModel>> m_stores;
    bool m_hasMetadataFile = false;
    bool m_unread = false;
};
