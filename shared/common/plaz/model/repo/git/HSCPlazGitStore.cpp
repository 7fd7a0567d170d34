#include "plaz/model/repo/git/HSCPlazGitStore.h"

#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/HSCPlazQStoreModel.h"
#include "plaz/model/repo/git/HSCPlazGitCredentials.h"
#include "plaz/model/repo/git/HSCPlazGitParams.h"

HSCPlazGitStore HSCPlazGitStore::of(const HSCPlazQStoreModel& model, HSCPlazWorkLayout layout,
                                    const HSCPlazCfgModel* config) {
    const std::string boards = model.getStoreType() == "board" ? HSCPlazGitParams::getBoardUrl() : std::string();
    const std::string& url = boards.empty() ? model.getUrl() : boards;
    const HSCPlazGitCredentials credentials = HSCPlazGitCredentials::choose(model.getStoreType(), url, config);
    return {model,
            std::move(layout),
            url,
            credentials.putInto(url),
            !credentials.isEmpty(),
            HSCPlazGitCredentials::explainRefusal(model.getName(), model.getStoreType(), url)};
}

std::string HSCPlazGitStore::findAccess(const std::string& url, const HSCPlaz* hub, const HSCPlazCfgModel* config) {
    if (hub)
        for (const HSCPlazQStore* store : hub->getStores())
            if (store->getModel() && store->getUrl() == url) return of(*store->getModel(), {}, config).access;
    return HSCPlazGitCredentials::choose("", url, config).putInto(url);
}
