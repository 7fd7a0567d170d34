#include "UserHub.h"

#include "HubQueries.h"

#include "plaz/HSCPlazInspection.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQStore.h"

HubInForce HubInForce::of(const HSCPlaz& hub) {
    const HSCPlazInspection::HubSource source = HSCPlazInspection::findHubSource();
    const std::string& metadata = hub.getModel()->getLocalRoot();
    return {HSCPlazTrust::maskSecrets(source.url),
            source.chooser,
            metadata,
            metadata == HSCPlazInspection::getRefreshedHubMetadataFile(),
            hub.getStores(),
            HSCPlazInspection::findHiddenStores()};
}

const char* HubInForce::ownerOf(const HSCPlazQStore& store) {
    if (!HubQueries::isListed(store)) return "nobody";
    return store.isUserRepository() ? "yours" : "hub";
}
