#pragma once

#include "plaz/base/PlazExport.h"
#include "support/HSTVector.h"

#include <string>

class HSCPlazModel;
class HSCPlazQStore;

/// The hub: root of the catalog. Owns its stores; refers to the hub model, which the manager owns.
/// Not safe to use from several threads at once.
class PLAZ_API HSCPlaz {
public:
    HSCPlaz() = default;
    ~HSCPlaz();
    HSCPlaz(const HSCPlaz&) = delete;
    HSCPlaz& operator=(const HSCPlaz&) = delete;

    /// The hub runs with a shared installation area rather than a per-user one.
    bool isGlobalMode() const { return m_globalMode; }
    void setGlobalMode(bool value) { m_globalMode = value; }

    HSCPlazModel* getModel() const { return m_model; }
    /// Keeps @p model (not owned) as the source of the three texts below. Null is allowed; they then read as empty
    /// and setting them does nothing.
    void setModel(HSCPlazModel* model) { m_model = model; }

    std::string getRoot() const;
    void setRoot(const std::string& value);
    std::string getMetadataFile() const;
    void setMetadataFile(const std::string& value);
    std::string getLocalDBFilePath() const;
    void setLocalDBFilePath(const std::string& value);

    /// The stores in the order in which they were added; owned by the hub.
    const HSTVector<HSCPlazQStore*>& getStores() const { return m_stores; }
    /// Appends a store and takes ownership; null is ignored. Names are not checked for duplicates.
    void addStore(HSCPlazQStore* store);
    /// First store of exactly that name; null when there is none.
    HSCPlazQStore* getStore(const std::string& name) const;
    /// Removes and destroys a store. @return false for null and for a store that is not in this hub
    bool removeStore(HSCPlazQStore* store);

private:
    HSTVector<HSCPlazQStore*> m_stores;
    HSCPlazModel* m_model = nullptr;
    bool m_globalMode = false;
};
