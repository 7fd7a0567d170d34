#include "plaz/model/HSCPlazCategory.h"

HSCPlazCategory::HSCPlazCategory(const HSCPlazCategoryModel& model)
    : m_name(model.name), m_displayName(model.displayName), m_description(model.description) {
    for (const HSCPlazCategoryModel& child : model.subCategories)
        addSubCategory(std::make_unique<HSCPlazCategory>(child).release());
}

HSCPlazCategory::~HSCPlazCategory() {
    for (HSCPlazCategory* category : m_subCategories) delete category;
}

void HSCPlazCategory::addSubCategory(HSCPlazCategory* category) {
    if (category) m_subCategories.push_back(category);
}
