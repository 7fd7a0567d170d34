#pragma once

#include "plaz/base/PlazExport.h"
#include "plaz/model/HSCPlazQStoreModel.h"
#include "support/HSTVector.h"

#include <string>

/// A node of a store's category tree. Belongs to its store or to its parent category; owns its sub-categories.
class PLAZ_API HSCPlazCategory {
public:
    HSCPlazCategory() = default;
    /// Builds the node and, recursively, all below it.
    explicit HSCPlazCategory(const HSCPlazCategoryModel& model);
    ~HSCPlazCategory();
    HSCPlazCategory(const HSCPlazCategory&) = delete;
    HSCPlazCategory& operator=(const HSCPlazCategory&) = delete;

    const std::string& getName() const { return m_name; }
    const std::string& getDisplayName() const { return m_displayName; }
    const std::string& getDescription() const { return m_description; }
    const HSTVector<HSCPlazCategory*>& getSubCategories() const { return m_subCategories; }
    /// Takes ownership; null is ignored.
    void addSubCategory(HSCPlazCategory* category);

private:
    std::string m_name;
    std::string m_displayName;
    std::string m_description;
    HSTVector<HSCPlazCategory*> m_subCategories;
};
