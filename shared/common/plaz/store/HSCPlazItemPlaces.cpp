#include "plaz/store/HSCPlazItemPlaces.h"

#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/store/HSCPlazPlaces.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "support/HUTFile.h"

#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>

namespace {

bool meet(const std::string& a, const std::string& b) {
    return HSCPlazPlaceClaims::meet(a, b);
}

/// A revision's folder in that of the item itself, where that is no other revision's own.
bool isRevisionBelow(const HSCPlazQItemModel& inner, const std::string& innerDir, const HSCPlazQItemModel& outer,
                     const std::string& outerDir) {
    return innerDir == outerDir + "/" + inner.getRevision() &&
           (outer.getRevision().empty() || !boost::algorithm::ends_with(outerDir, "/" + outer.getRevision()));
}

/// Whether an item in one folder would take the files of another away, or these would be in its own.
bool clash(const HSCPlazQStoreModel& store, const HSCPlazQItemModel& item, const std::string& dir,
           const HSCPlazQItemModel& other, const std::string& theirs) {
    if (theirs.empty() || !meet(dir, theirs)) return false;
    if (other.getName() != item.getName()) return true;
    return store.isMultiRevisionSupported() && other.getRevision() != item.getRevision() && dir != theirs &&
           !isRevisionBelow(item, dir, other, theirs) && !isRevisionBelow(other, theirs, item, dir);
}

bool isWhereAnotherIs(const HSCPlazQStoreModel& store, const HSCPlazQItemModel& item) {
    const auto& items = store.getKnownItems();
    return std::any_of(items.begin(), items.end(), [&](const auto& other) {
        return other.get() != &item && other->isInstalled() &&
               clash(store, item, item.getLocalDir(), *other, other->getLocalDir());
    });
}

} // namespace

std::string HSCPlazItemPlaces::findObstacle(HSCPlazWorkspace& workspace, const HSCPlazQStoreModel& store,
                                            const std::string& dir, bool isComing) {
    const HSCPlazStoreLayout layout = workspace.paths.getStoreLayout(store);
    for (const std::string& name : {store.getMetadataFile(), store.getCatalogFile()}) {
        const std::string file = layout.getArea() + "/" + name;
        const bool isThere = !name.empty() && (isComing || HUTFile::isRegularFile(file));
        if (isThere && meet(dir, file)) return "the store has its \"" + name + "\"";
    }
    for (const std::string& own : {layout.getHiddenDir(), layout.getStaging()})
        if (meet(dir, own)) return "the hub keeps what it knows of the store";
    const std::string owner = HSCPlazPlaces(workspace).findMet(store, dir);
    return owner.empty() ? std::string() : "a place of " + owner + " is";
}

const HSCPlazQItem* HSCPlazItemPlaces::findOverlap(const HSCPlazFoundItem& found, const std::string& dir) {
    for (const HSCPlazQItem* other : found.store->getInstalledItems()) {
        if (other == found.item) continue;
        const bool isInItsRoot =
            other->getName() != found.item->getName() && meet(found.item->getRoot(), other->getRoot());
        if (isInItsRoot ||
            clash(*found.store->getModel(), *found.item->getModel(), dir, *other->getModel(), other->getLocalRootDir()))
            return other;
    }
    return nullptr;
}

void HSCPlazItemPlaces::correct(HSCPlazWorkspace& workspace, HSCPlazQStoreModel& store) {
    for (const auto& item : store.getKnownItems()) {
        if (!item->isInstalled() || !item->isListed() || item->getLocalDir().empty()) continue;
        const std::string own = workspace.paths.getItemDir(store, *item);
        if (own.empty() || own == item->getLocalDir()) continue;
        if (isWhereAnotherIs(store, *item) || !findObstacle(workspace, store, item->getLocalDir(), false).empty())
            item->setLocalDir(own);
    }
}
