#include "ObjectProperties.h"

#include "ItemReference.h"
#include "StoreSummary.h"

#include "plaz/HSCPlazInspection.h"
#include "plaz/HSCPlazTaskMgr.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemDependency.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/HSCPlazUpdateDecision.h"
#include "support/HUTText.h"

#include <algorithm>

namespace {

using Item = HSCPlazQItem;
using Store = HSCPlazQStore;

std::int64_t number(std::size_t value) {
    return static_cast<std::int64_t>(value);
}

PropertyValue dependenciesOf(const Item& item) {
    std::vector<std::string> references;
    for (const HSCPlazQItemDependency* dependency : item.getItemDependencies())
        references.push_back(
            ItemReference{dependency->getStore(), dependency->getItem(), dependency->getRevision()}.toText());
    return references;
}

PropertyValue lastRefreshOf(const Store& store) {
    auto& asked = const_cast<Store&>(store); // the task manager asks nothing of the store but its place
    return HSCPlazTaskMgr::isRefreshed(&asked) ? std::int64_t{HSCPlazTaskMgr::getLastRefreshTime(&asked)} : 0;
}

} // namespace

template <> const std::vector<Property<Store>>& propertiesOf() {
    static const std::vector<Property<Store>> properties{
        {"name", "Name of the store", [](const Store& store) -> PropertyValue { return store.getName(); }},
        {"display_name", "Name for people", [](const Store& store) -> PropertyValue { return store.getDisplayName(); }},
        {"description", "What the store offers",
         [](const Store& store) -> PropertyValue { return store.getDescription(); }},
        {"store_type", "Kind of store, such as board",
         [](const Store& store) -> PropertyValue { return store.getStoreType(); }},
        {"url", "Where its repository is, without user id and token",
         [](const Store& store) -> PropertyValue { return HSCPlazTrust::maskSecrets(store.getUrl()); }},
        {"branch", "The branch that is followed",
         [](const Store& store) -> PropertyValue { return store.getBranch(); }},
        {"release", "The release of the product that its catalog is for",
         [](const Store& store) -> PropertyValue { return store.getRelease(); }},
        {"catalog_revision", "Revision of its catalog",
         [](const Store& store) -> PropertyValue { return store.getItemCatalogRevision(); }},
        {"local_directory", "The store's area on disk; empty without one",
         [](const Store& store) -> PropertyValue { return store.getLocalRootDir(); }},
        {"is_private", "Its repository asks for a user id and token",
         [](const Store& store) -> PropertyValue { return store.isPrivateRepository(); }},
        {"user_repository", "The user has added the store",
         [](const Store& store) -> PropertyValue { return store.isUserRepository(); }},
        {"is_product_specific", "The store file lists the running product",
         [](const Store& store) -> PropertyValue { return store.isProductSpecific(); }},
        {"multi_revision_supported", "Several revisions of an item may be installed side by side",
         [](const Store& store) -> PropertyValue { return store.IsMultiRevisionSupported(); }},
        {"last_refresh", "When its catalog was fetched, in seconds since 1970; 0 for never", lastRefreshOf},
        {"item_count", "How many items it offers",
         [](const Store& store) -> PropertyValue { return number(StoreSummary::of(store).items); }},
        {"installed_count", "How many of them are installed",
         [](const Store& store) -> PropertyValue { return number(StoreSummary::of(store).installed); }},
    };
    return properties;
}

template <> const std::vector<Property<Item>>& propertiesOf() {
    static const std::vector<Property<Item>> properties{
        {"name", "Name of the item", [](const Item& item) -> PropertyValue { return item.getName(); }},
        {"item_name", "Name of the item as commands use it",
         [](const Item& item) -> PropertyValue { return item.getItemName(); }},
        {"store", "Name of its store", [](const Item& item) -> PropertyValue { return item.getStoreName(); }},
        {"revision", "This revision", [](const Item& item) -> PropertyValue { return item.getRevision(); }},
        {"latest_revision", "The newest revision on offer",
         [](const Item& item) -> PropertyValue { return item.getLatestRevision(); }},
        {"display_name", "Name for people", [](const Item& item) -> PropertyValue { return item.getDisplayName(); }},
        {"description", "What the item is", [](const Item& item) -> PropertyValue { return item.getDescription(); }},
        {"company", "Who publishes it", [](const Item& item) -> PropertyValue { return item.getCompany(); }},
        {"company_display", "The publisher's name for people",
         [](const Item& item) -> PropertyValue { return item.getCompanyDisplayName(); }},
        {"author", "Who wrote it", [](const Item& item) -> PropertyValue { return item.getAuthor(); }},
        {"website", "Its web site", [](const Item& item) -> PropertyValue { return item.getWebsite(); }},
        {"url", "Its page in the store's repository",
         [](const Item& item) -> PropertyValue { return HSCPlazTrust::maskSecrets(item.getUrl()); }},
        {"logo", "File of its logo, or a link to it; empty without one",
         [](const Item& item) -> PropertyValue { return HSCPlazTrust::maskSecrets(item.getLogo()); }},
        {"history", "Its change log", [](const Item& item) -> PropertyValue { return item.getHistory(); }},
        {"category", "Its main category",
         [](const Item& item) -> PropertyValue {
             return item.getModel() ? item.getModel()->getCategory() : std::string();
         }},
        {"categories", "Its categories", [](const Item& item) -> PropertyValue { return item.getCategories(); }},
        {"search_keywords", "Words to find it by",
         [](const Item& item) -> PropertyValue { return item.getItemSearchKeywords(); }},
        {"dependencies", "What it needs, each as STORE::ITEM@REVISION", dependenciesOf},
        {"commit_id", "The commit that holds this revision",
         [](const Item& item) -> PropertyValue { return item.getCommitId(); }},
        {"is_active", "The revision is still offered",
         [](const Item& item) -> PropertyValue { return item.isActive(); }},
        {"installed", "This revision is installed",
         [](const Item& item) -> PropertyValue { return item.IsInstalled(); }},
        {"outdated", "This revision is installed and has an update",
         [](const Item& item) -> PropertyValue { return HSCPlazUpdateDecision::isOutdated(item); }},
        {"held", "The user wants it to stay in the revision that is installed",
         [](const Item& item) -> PropertyValue { return HSCPlazInspection::isHeld(item); }},
        {"installation_mode", "user for one that was asked for, tool for one that others need",
         [](const Item& item) -> PropertyValue { return item.getInstallationMode(); }},
        {"reference_count", "How many dependencies hold it",
         [](const Item& item) -> PropertyValue { return std::int64_t{item.getReferenceCount()}; }},
        {"local_directory", "Where it is installed; empty when it is not",
         [](const Item& item) -> PropertyValue { return item.IsInstalled() ? item.getLocalRootDir() : std::string(); }},
    };
    return properties;
}

template <typename Native> const Property<Native>* findProperty(const std::string& name) {
    const std::vector<Property<Native>>& properties = propertiesOf<Native>();
    const auto found = std::find_if(properties.begin(), properties.end(), [&](const auto& property) {
        return HUTText::equalIgnoringCase(name, property.name);
    });
    return found == properties.end() ? nullptr : &*found;
}

template const Property<Store>* findProperty(const std::string& name);
template const Property<Item>* findProperty(const std::string& name);
