#pragma once

class HSCPlaz;
class HSCPlazBaseModel;

/// What the tasks need of a repository, whatever it is kept with.
///
/// RATIONALE: no virtual destructor, because nobody deletes a repository through this interface; the factory owns the
/// one object there is.
class HSCPlazRepo {
public:
    /// Places one item (an item model) on disk. Both pointers are borrowed.
    virtual bool install(HSCPlaz* hub, HSCPlazBaseModel* model) = 0;
    virtual bool update(HSCPlazBaseModel* model) = 0;
    virtual bool uninstall(HSCPlazBaseModel* model) = 0;
    /// Brings a store's catalog files (a store model) up to date.
    virtual bool updateCatalog(HSCPlazBaseModel* model) = 0;

protected:
    ~HSCPlazRepo() = default;
};
