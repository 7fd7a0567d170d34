#include "Doctor.h"

#include "DoctorChecks.h"
#include "Failure.h"
#include "HubQueries.h"

#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/HSCPlazQStoreModel.h"
#include "support/HDGUIStatus.h"
#include "support/HPAParamMgr.h"

#include <algorithm>
#include <exception>
#include <functional>

using HSCPlazPathsInForce::StorePaths;
using Path = HSCPlazPathsInForce::Path;

namespace {

/// The findings so far. A check that is still to be made when the run is cancelled is not made.
class Round {
public:
    explicit Round(HDGUIStatus& status) : m_status(status) {}

    /// A check that cannot be carried out is a problem of its subject.
    void make(const std::string& subject, const std::function<std::vector<Finding>()>& check) {
        if (m_status.isCanceled()) return;
        m_status.changeStatus("Looking at " + subject);
        try {
            const std::vector<Finding> found = check();
            // A git that was killed says nothing of what it was asked.
            if (!m_status.isCanceled()) m_findings.insert(m_findings.end(), found.begin(), found.end());
        } catch (const std::exception& failure) {
            if (m_status.isCanceled()) return;
            m_findings.push_back(doctor::problem(subject, HSCPlazTrust::maskSecrets(failure.what()),
                                                 "Mend what it names, and look again."));
        }
    }
    void makeOne(const std::string& subject, const std::function<Finding()>& check) {
        make(subject, [&] { return std::vector<Finding>{check()}; });
    }

    std::vector<Finding> take() { return std::move(m_findings); }
    bool isLastOk() const { return !m_findings.empty() && m_findings.back().state == Finding::State::ok; }

private:
    HDGUIStatus& m_status;
    std::vector<Finding> m_findings;
};

Path find(const std::vector<Path>& paths, const std::string& name) {
    return *std::find_if(paths.begin(), paths.end(), [&](const Path& path) { return path.name == name; });
}

bool mayAskRemotes() {
    const HPAParamMgr& params = HPAParamMgr::getParamMgr();
    return params.getValueAsBool("plaz.enableRemoteAccess") && params.getValueAsBool("plaz.enableGitAccess");
}

std::vector<StorePaths> pathsOf(const HSCPlaz& hub, const std::vector<HSCPlazQStore*>& stores) {
    std::vector<StorePaths> paths = HSCPlazPathsInForce::ofStores(hub);
    const auto isOther = [&](const StorePaths& one) {
        return std::none_of(stores.begin(), stores.end(), [&](auto* store) { return store->getName() == one.store; });
    };
    paths.erase(std::remove_if(paths.begin(), paths.end(), isOther), paths.end());
    return paths;
}

void examineStore(Round& round, const HSCPlaz& hub, HSCPlazQStore& store, const std::string& trial,
                  const HDGUIStatus& status) {
    const std::string name = "store " + store.getName();
    const HSCPlazQStoreModel& model = *store.getModel();
    round.makeOne(name + ": catalog", [&] { return doctor::checkCatalog(store); });
    round.makeOne(name + ": database", [&] { return doctor::checkDatabase(store); });
    round.make(name + ": installed items", [&] { return doctor::checkItems(store, status); });
    round.make(name + ": what items need", [&] { return doctor::checkNeeds(hub, store); });
    if (model.getUrl().empty() && !model.isOffered()) return; // nothing can be fetched
    round.makeOne(name + ": working copy", [&] { return doctor::checkWorkingCopy(model, trial); });
    if (model.isPrivateRepository())
        round.makeOne(name + ": credentials", [&] { return doctor::checkCredentials(model); });
}

} // namespace

bool isOfGit(const std::string& messageId) {
    return messageId == messageOf(Msg::gitErrors, "", "").getId() || messageId == messageOf(Msg::gitFailed).getId();
}

std::vector<Finding> Doctor::examine(const std::vector<HSCPlazQStore*>& stores) const {
    Round round(m_status);
    m_status.setDeterminate(false);
    const std::vector<Path> paths = HSCPlazPathsInForce::ofHub();
    const Path git = find(paths, "git");
    round.makeOne("git", [&] { return doctor::checkGit(git); });
    std::optional<doctor::TrialCopy> trial;
    if (round.isLastOk()) {
        round.makeOne("certificates", [&] { return doctor::checkCertificates(find(paths, "certificates")); });
        round.makeOne("proxy", [&] {
            trial.emplace();
            return doctor::checkProxy(trial->getDir());
        });
    }
    round.make("settings", doctor::checkSettings);
    round.make("switches", doctor::checkSwitches);
    round.make("directories", [&] { return doctor::checkDirectories(paths, pathsOf(m_hub, stores)); });
    round.make("disk", [&] { return doctor::checkDisk(find(paths, "user area")); });
    round.makeOne("hub: metadata", doctor::checkHubMetadata);
    if (HubQueries::isEmpty(m_hub)) round.makeOne("hub: stores", doctor::tellEmptyHub);
    round.make("hub: own stores", doctor::checkOwnStores);
    round.makeOne("hub: configuration", doctor::checkConfiguration);
    round.make("hub: places of stores", doctor::checkPlaces);
    for (HSCPlazQStore* store : stores) examineStore(round, m_hub, *store, trial ? trial->getDir() : "", m_status);
    if (!trial || !mayAskRemotes()) return round.take();

    round.makeOne("hub: remote", [&] {
        return doctor::checkRemote("hub: remote", m_hub.getModel()->getRemoteRepository(), "", trial->getDir());
    });
    for (const HSCPlazQStore* store : stores) {
        if (store->getUrl().empty() && !store->getModel()->isOffered()) continue;
        const std::string subject = "store " + store->getName() + ": remote";
        round.makeOne(subject, [&] {
            return doctor::checkRemote(subject, store->getUrl(), store->getModel()->getBranch(), trial->getDir());
        });
    }
    return round.take();
}
