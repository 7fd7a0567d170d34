#include "Program.h"

#include "Failure.h"
#include "HubParams.h"
#include "Secrets.h"
#include "ShellMsg.h"
#include "UserHub.h"
#include "UserSettings.h"

#include "plaz/base/HSCPlazNames.h"
#include "support/HPAParamMgr.h"

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
    return show(makeActions().addStore(m_options.newStore));
}

int Program::runRemoveStore() {
    return show(makeActions().removeStore(m_options.store));
}
