// What the hub has of each store.

#include "DoctorChecks.h"

#include "ItemReference.h"

#include "plaz/HSCPlazInspection.h"
#include "plaz/HSCPlazTaskMgr.h"
#include "plaz/base/HSCPlazStoreLayout.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/HSCPlazQStoreModel.h"
#include "plaz/model/reader/HSCPlazFileCheck.h"
#include "support/HDGUIStatus.h"
#include "support/HIOStream.h"
#include "support/HPAParamMgr.h"
#include "support/HUTFile.h"

#include <algorithm>
#include <ctime>
#include <map>

namespace {

std::string subjectOf(const std::string& store, const char* what) {
    return "store " + store + ": " + what;
}

std::string describeTime(std::time_t time) {
    char text[32];
    return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", std::localtime(&time)));
}

} // namespace

Finding doctor::checkCatalog(HSCPlazQStore& store) {
    const HSCPlazQStoreModel& model = *store.getModel();
    const std::string subject = subjectOf(store.getName(), "catalog");
    if (!model.isOffered())
        return warning(subject, "the store is no longer offered to this product",
                       "What is installed from it can be used; it goes when that is uninstalled.");
    const std::string refresh = "plaz refresh " + store.getName();
    const std::string area = HSCPlazInspection::getArea(model);
    const bool isRefreshed =
        HSCPlazStoreLayout::isComplete(area) && HUTFile::exists(area + "/" + model.getMetadataFile());
    const std::string dir = isRefreshed ? area : model.getGdaDataLoc();
    if (dir.empty())
        return warning(subject, "nothing is known of its items: it was never refreshed, and nothing is shipped",
                       refresh);
    std::vector<std::string> files{dir + "/" + model.getMetadataFile()};
    if (model.isProductSpecific() && !model.getCatalogFile().empty())
        files.push_back(dir + "/" + model.getCatalogFile());
    for (const std::string& metadata : files) {
        const std::string damage = findDamage(metadata);
        if (!damage.empty()) return problem(subject, damage, "Fetch it again: " + refresh);
    }
    if (!model.isProductSpecific()) return ok(subject, "the store has nothing for this product and release");
    const std::string age = isRefreshed ? "refreshed " + describeTime(HSCPlazTaskMgr::getLastRefreshTime(&store))
                                        : "shipped, never refreshed";
    return ok(subject, files.back() + " (" + age + "): " + std::to_string(store.getItems().size()) + " revisions");
}

Finding doctor::checkDatabase(const HSCPlazQStore& store) {
    const std::string subject = subjectOf(store.getName(), "database");
    const std::string file = store.getLocalDbFilePath();
    if (const std::string link = HSCPlazInspection::findLink(*store.getModel()); !link.empty())
        return problem(subject, link + " is a link, and nothing is read or written through it",
                       "Remove the link; to keep the store elsewhere move it, or make its whole directory the link.");
    if (HSCPlazInspection::isRecordGone(*store.getModel()))
        return problem(subject, file + " is gone, and with it what it says of installed items",
                       "Bring back a copy of the file, or install the items again; their files are taken over where "
                       "they are whole.");
    if (HSCPlazInspection::findMissingPlaces().count(store.getName()) != 0)
        return warning(subject, "what is installed is not known, for the store's directory is not there", "");
    std::string content;
    const HIOStream::Status status = HIOStream::read(file, content, 0); // only whether there is something to read
    if (status == HIOStream::Status::missing) return ok(subject, "nothing was installed yet");
    const std::string damage = findDamage(file);
    if (HSCPlazFileCheck::of(file).isUnread)
        return problem(subject, damage,
                       "Give yourself the right to read it, check its disk, or raise the limit that it goes beyond: "
                       "until then nothing that is installed can be changed.");
    if (!damage.empty())
        return problem(
            subject, damage,
            "Bring back an older copy of the file, or install what is missing again: what can be read of it counts, "
            "and the next change writes it anew.");
    const auto& items = store.getModel()->getKnownItems();
    const auto installed =
        std::count_if(items.begin(), items.end(), [](const auto& item) { return item->isInstalled(); });
    return ok(subject, file + ": " + std::to_string(installed) + " installed");
}

std::vector<Finding> doctor::checkNeeds(const HSCPlaz& hub, const HSCPlazQStore& store) {
    const std::string subject = subjectOf(store.getName(), "what items need");
    std::vector<Finding> findings;
    const std::map<std::string, std::string> missing = HSCPlazInspection::findMissingPlaces();
    for (const HSCPlazQItem* item : store.getInstalledItems()) {
        if (!item->isRecorded()) continue;
        const std::string name = ItemReference::of(*item).toText();
        for (const HSCPlazQItemDependency* needed : item->getItemDependencies())
            if (missing.count(needed->getStore()) == 0 && !HSCPlazInspection::findServing(hub, *needed))
                findings.push_back(
                    warning(subject,
                            name + " needs " +
                                ItemReference{needed->getStore(), needed->getItem(), needed->getRevision()}.toText() +
                                ", which is not installed",
                            "plaz install " + name));
    }
    return findings;
}

std::vector<Finding> doctor::checkItems(const HSCPlazQStore& store, const HDGUIStatus& status) {
    const std::string subject = subjectOf(store.getName(), "installed items");
    std::vector<Finding> findings;
    std::size_t whole = 0;
    for (HSCPlazQItem* item : store.getInstalledItems()) {
        if (!item->isRecorded()) continue;
        if (status.isCanceled()) return findings;
        const HSCPlazFilesResult files = HSCPlazInspection::compareFiles(*item);
        const std::string name = ItemReference::of(*item).toText();
        if (files.isDone())
            ++whole;
        else if (files.outcome == HSCPlazFilesResult::Outcome::damaged)
            findings.push_back(problem(subject, name + " is not as it was installed: " + files.describe(),
                                       files.unreadable.empty()
                                           ? "plaz repair " + name
                                           : "Give yourself the right to read it, or check its disk."));
        else
            findings.push_back(problem(subject, files.report.findProblem()->getMessage(), ""));
    }
    if (whole > 0) findings.push_back(ok(subject, std::to_string(whole) + " whole, file by file"));
    return findings;
}

Finding doctor::checkWorkingCopy(const HSCPlazQStoreModel& store, const std::string& trial) {
    const std::string subject = subjectOf(store.getName(), "working copy");
    const std::string dir = HSCPlazInspection::getWorkingCopy(store);
    const std::string refresh = "plaz refresh " + store.getName();
    if (!HUTFile::exists(dir)) return ok(subject, "none yet; the first refresh or installation makes it");
    const std::string objection = HSCPlazInspection::findObjection(dir);
    if (!objection.empty())
        return problem(subject, dir + " is not used, since " + objection,
                       "Remove that directory, or have it removed by whoever owns it, and then " + refresh + ".");
    if (!HSCPlazStoreLayout::isComplete(dir))
        return warning(subject, dir + " is not complete; it is made afresh when it is used next", refresh);
    if (HSCPlazInspection::isForeign(store))
        return warning(subject,
                       dir + " is of another URL or of other credentials; it is made afresh when it is used next",
                       refresh);
    if (trial.empty()) return ok(subject, dir + ": its last fetch was completed");
    const HSCPlazInspection::Answer check = HSCPlazInspection::checkIntegrity(dir);
    if (!check.isGiven)
        return problem(subject, dir + " does not hold together: " + check.reason,
                       "Remove that directory, and then " + refresh + ".");
    const std::string recorded = getProxies(dir);
    const std::string proxy = getProxies(trial);
    if (recorded != proxy)
        return warning(subject,
                       dir + " was made with " + (recorded.empty() ? "no proxy" : recorded) + ", but " +
                           (proxy.empty() ? "none" : proxy) + " is in force now",
                       refresh);
    return ok(subject, dir + ": complete");
}

Finding doctor::checkCredentials(const HSCPlazQStoreModel& store) {
    const std::string subject = subjectOf(store.getName(), "credentials");
    if (HSCPlazInspection::hasCredentials(store)) return ok(subject, "the store is private, and credentials are set");
    if (HPAParamMgr::getParamMgr().getValueAsBool("plaz.enableAskPassForPrivateRepo"))
        return ok(subject, "the store is private; none are set, but git may ask for them");
    return problem(subject, "the store is private, and none are set for it",
                   "Set user_id and user_token for its URL in the configuration file (for a board store also "
                   "plaz.git_user.board_store and plaz.git_token.board_store, and for another server than theirs "
                   "plaz.git_servers.board_store).");
}
