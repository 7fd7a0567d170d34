#include "plaz/tasks/HSCPlazRefreshPlanTask.h"

#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/reader/HSCPlazQItemCatalogReader.h"
#include "plaz/model/reader/HSCPlazQStoreReader.h"
#include "plaz/model/repo/git/HSCPlazGitHead.h"
#include "plaz/model/repo/git/HSCPlazGitHistory.h"
#include "plaz/store/HSCPlazWorkspace.h"
#include "plaz/tasks/HSCPlazFetchedFiles.h"
#include "plaz/tasks/HSCPlazRefreshHubTask.h"
#include "plaz/tasks/HSCPlazRefreshStoreTask.h"
#include "plaz/tasks/HSCPlazStoreCatalog.h"
#include "plaz/tasks/HSCPlazTask.h"

#include <map>
#include <set>
#include <utility>

using Kind = HSCPlazCatalogChanges::Kind;
using Outcome = HSCPlazStoreResult::Outcome;
namespace Catalog = HSCPlazStoreCatalog;

namespace {

using Key = std::pair<std::string, std::string>; // name and revision
using Offers = std::map<Key, const HSCPlazQItemModel*>;

Offers offersOf(const HSCPlazQStoreModel& store) {
    Offers offers;
    for (const auto& item : store.getItems())
        if (item->isListed()) offers[{item->getName(), item->getRevision()}] = item.get();
    return offers;
}

/// The one revision of an item that a store offers which keeps one; null for none.
const HSCPlazQItemModel* findOther(const Offers& offers, const std::string& name, const HSCPlazQStoreModel& store) {
    const auto found = store.isMultiRevisionSupported() ? offers.end() : offers.lower_bound({name, {}});
    return found != offers.end() && found->first.first == name ? found->second : nullptr;
}

/// What is installed, by its revision or, of a store that keeps one, whatever that is: the catalog may offer it no
/// more.
class InstalledItems {
public:
    InstalledItems(const HSCPlazQStoreModel& known, bool isByRevision) : m_isByRevision(isByRevision) {
        for (const auto& item : known.getItems())
            if (item->isInstalled()) m_keys.insert(keyOf({item->getName(), item->getRevision()}));
    }
    bool holds(const Key& key) const { return m_keys.count(keyOf(key)) != 0; }

private:
    Key keyOf(const Key& key) const { return {key.first, m_isByRevision ? key.second : std::string()}; }

    bool m_isByRevision;
    std::set<Key> m_keys;
};

/// What comes with a new catalog, and what goes with the old one.
std::vector<HSCPlazCatalogChanges::Item> compare(const HSCPlazQStoreModel& known, const HSCPlazQStoreModel& fresh) {
    std::vector<HSCPlazCatalogChanges::Item> changes;
    const Offers before = offersOf(known), after = offersOf(fresh);
    const InstalledItems installed(known, fresh.isMultiRevisionSupported());
    for (const auto& [key, item] : after) {
        const auto same = before.find(key);
        const HSCPlazQItemModel* older = same != before.end() ? same->second : findOther(before, key.first, fresh);
        if (older == nullptr)
            changes.push_back({Kind::added, key.first, key.second, "", installed.holds(key)});
        else if (same == before.end() || older->getCommitId() != item->getCommitId())
            changes.push_back({Kind::changed, key.first, key.second, older->getRevision(), installed.holds(key)});
    }
    for (const auto& [key, item] : before)
        if (after.count(key) == 0 && findOther(after, key.first, fresh) == nullptr)
            changes.push_back({Kind::withdrawn, key.first, key.second, "", installed.holds(key)});
    return changes;
}

void readStaged(HSCPlazTask& task, const HSCPlazFetchedFiles& staging, const HSCPlazQStoreModel& store,
                HSCPlazQStoreModel& fresh) {
    fresh.setName(store.getName());
    HSCPlazFindings found;
    HSCPlazQStoreReader::read(staging.getFile(store.getMetadataFile()), fresh, found);
    const std::string& catalog = fresh.getCatalogFile();
    if (fresh.isProductSpecific() && !catalog.empty())
        HSCPlazQItemCatalogReader::read(staging.getFile(catalog), fresh, found);
    task.mentionBrought(found.toReport("items in the catalog of the store \"" + store.getName() + '"'));
}

/// The metadata may name another branch, which is followed for the plan alone.
class BranchGuard {
public:
    explicit BranchGuard(HSCPlazQStoreModel& store) : m_store(store), m_branch(store.getBranchToSync()) {}
    ~BranchGuard() { m_store.setBranchToSync(m_branch); }
    BranchGuard(const BranchGuard&) = delete;
    BranchGuard& operator=(const BranchGuard&) = delete;

private:
    HSCPlazQStoreModel& m_store;
    const std::string m_branch;
};

bool compareWithRemote(HSCPlazTask& task, HSCPlazQStoreModel& store, HSCPlazStoreResult& result) {
    const BranchGuard branch(store);
    const HSCPlazWorkLayout layout = task.getWorkspace().gitStore(store).layout;
    const HSCPlazFetchedFiles staging(layout.getStaging());
    if (!Catalog::stage(task, store)) return false;
    HSCPlazCatalogChanges& changes = result.changes;
    changes.previousCommit = HSCPlazGitHead::getOwn(layout.getIndex());
    changes.commit =
        HSCPlazGitHead::getCommit(staging.getDir(), HSCPlazGitHead::findBranch(staging.getDir(), store.getBranch()));
    changes.subjects = HSCPlazGitHistory::listSubjects(layout.getIndex(), changes.previousCommit, changes.commit);
    HSCPlazQStoreModel fresh;
    readStaged(task, staging, store, fresh);
    changes.items = compare(store, fresh);
    // A catalog that was damaged here comes whole again.
    const bool isSame = changes.commit == changes.previousCommit && changes.items.empty() && !store.isUnread();
    result.outcome = isSame ? Outcome::upToDate : Outcome::outdated;
    return true;
}

/// What becomes of a store that the hub has and will have.
void planKnown(HSCPlazTask& task, HSCPlazQStore& store, const std::string& url, HSCPlazStoreResult& result) {
    if (url != store.getModel()->getUrl()) {
        result.outcome = Outcome::outdated;
        result.changes.url = HSCPlazTrust::maskSecrets(url);
        return;
    }
    const std::size_t told = task.getReport().getNotes().size();
    if (!task.guard([&] { return HSCPlazRefreshPlanTask::planStore(task, store, result); }))
        result.outcome = Outcome::failed;
    result.report = task.getReport().getBehind(told);
}

} // namespace

bool HSCPlazRefreshPlanTask::planStore(HSCPlazTask& task, HSCPlazQStore& store, HSCPlazStoreResult& result) {
    HSCPlazQStoreModel& model = *store.getModel();
    if (!HSCPlazRefreshStoreTask::requireOffered(task, model)) return false;
    task.show("Looking at", Catalog::shownName(model), 0);
    if (HSCPlazStoreLayout::isComplete(task.getWorkspace().gitStore(model).layout.getIndex()))
        return compareWithRemote(task, model, result);
    result.outcome = Outcome::outdated;
    return true;
}

bool HSCPlazRefreshPlanTask::planHub(HSCPlazTask& task, std::vector<HSCPlazStoreResult>& results) {
    const auto fresh = HSCPlazRefreshHubTask::look(task);
    if (!fresh) return false;
    std::set<std::string> staying;
    for (const auto& listed : fresh->getStores()) {
        staying.insert(listed->getName());
        HSCPlazQStore* known = task.getHub().getStore(listed->getName());
        if (known) {
            results.push_back(HSCPlazStoreResult::of(*known, Outcome::unknown));
            planKnown(task, *known, listed->getUrl(), results.back());
        } else {
            results.push_back({listed->getName(), "", 0, Outcome::added, {}, {}});
            results.back().changes.url = HSCPlazTrust::maskSecrets(listed->getUrl());
        }
        if (task.isCancelled()) return false;
    }
    for (const HSCPlazQStore* known : task.getHub().getStores())
        if (staying.count(known->getName()) == 0 && known->getModel()->isOffered() && !known->isUserRepository())
            results.push_back(HSCPlazStoreResult::of(*known, Outcome::withdrawn));
    return true;
}
