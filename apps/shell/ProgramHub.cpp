#include "Program.h"

#include "Failure.h"
#include "HubParams.h"
#include "ShellMsg.h"
#include "UserHub.h"

#include "plaz/base/HSCPlazNames.h"
#include "plaz/base/HSCPlazTrust.h"

int Program::runHub() {
    HSCPlaz& hub = getHub();
    m_output->showHub(HubInForce::of(hub));
    HubQueries(hub).requireStores();
    return exitStatus::done;
}

int Program::runHubSet() {
    return show(makeActions().chooseHub(takeValue(requireParam(HSCPlazName::hub))));
}

int Program::runHubUnset() {
    return show(makeActions().leaveHub());
}

int Program::runAddStore() {
    const HSCPlazNewStore& wanted = m_options.newStore;
    if (HSCPlazTrust::holdsLogin(wanted.url))
        failWith(ShellMsg::urlHoldsLogin, wanted.name, HSCPlazTrust::maskSecrets(wanted.url));
    return show(makeActions().addStore(wanted));
}

int Program::runRemoveStore() {
    return show(makeActions().removeStore(m_options.store));
}
