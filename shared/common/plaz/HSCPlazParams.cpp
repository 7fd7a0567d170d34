#include "plaz/HSCPlazParams.h"

#include "plaz/base/HSCPlazLimits.h"
#include "plaz/base/HSCPlazNames.h"

#include "support/HPAParamMgr.h"

namespace {

void registerAccessParams(HPAParamMgr& params) {
    params.registerBoolParam("plaz.enableGitAccess", "Enable Git Access", true);
    params.setHidden("plaz.enableGitAccess", true);
    params.registerBoolParam("plaz.enableDataAccess", "Enable plaz Data Access", true);
    // RATIONALE: the same description as above, kept for compatibility.
    params.registerBoolParam("plaz.enableRemoteAccess", "Enable Git Access", true);
    params.registerIntParam("plaz.gitTimeout", "Number of seconds for git access to time out (default: 1000 second)",
                            1000);
    params.setHidden("plaz.gitTimeout", true);
    params.registerIntParam("plaz.gitMemoryLimit",
                            "Megabytes of memory that each process of git may have; 0: any (default: 4096)", 4096);
    params.setHidden("plaz.gitMemoryLimit", true);
    params.registerIntParam("plaz.gitLogLimit", "Megabytes of text that a git command may write; 0: any (default: 100)",
                            100);
    params.setHidden("plaz.gitLogLimit", true);
    params.registerIntParam("plaz.gitSlowTime",
                            "Seconds over which a transfer has to bring 1 kB a second; 0: never (default: 60)", 60);
    params.setHidden("plaz.gitSlowTime", true);
    params.registerIntParam("plaz.lockTimeout",
                            "Seconds to wait for another program that is at work on the hub (default: 1000)", 1000);
    params.setHidden("plaz.lockTimeout", true);
    params.registerBoolParam("plaz.useGitOnSearchPath", "Use the git of the search path, not that of the installation",
                             false);
    params.setHidden("plaz.useGitOnSearchPath", true);
    params.registerBoolParam("plaz.enableDebugGit", "Enable git debugging for plaz", false);
    params.setHidden("plaz.enableDebugGit", true);
    params.registerStringParam(HSCPlazName::httpProxy, "Http proxy for plaz", "");
    params.registerStringParam("plaz.https_proxy", "Https proxy for plaz", "");
    params.registerBoolParam("plaz.enableCertificateCheck",
                             "Check the certificates of servers; without, anybody may pose as one", true);
    params.registerStringParam("plaz.certificateFile",
                               "Full path of a file (PEM) of authorities that count beside those of the system", "");
    params.registerStringParam("plaz.uncheckedServers",
                               "Servers that get a login although their certificates are not checked", "");
    params.registerStringParam(HSCPlazName::hub, "URL of the hub of your own choice; empty: that of the installation",
                               "");
    params.registerStringParam("plaz.product_name", "Name of the product", "");
    params.registerStringParam("plaz.product_version", "Release Version of the product", "");
    params.registerStringParam("plaz.rawGitUrl", "Git path to configure url for raw contents",
                               "https://raw.example.org");
}

void registerFeatureParams(HPAParamMgr& params) {
    params.registerBoolParam("plaz.enablePlaz", "Enable Plaz", true);
    params.setHidden("plaz.enablePlaz", true);
    params.registerBoolParam("plaz.enableDebug", "Enable Plaz debug", false);
    params.setHidden("plaz.enableDebug", true);
    params.registerBoolParam("plaz.echoCommandFromToolSettings",
                             "Enable tcl command echo to console from solvan GUI Tool Settings", true);
    params.setHidden("plaz.echoCommandFromToolSettings", true);
    params.registerBoolParam("plaz.enableLog", "Enable logging for plaz library.", false);
    params.setHidden("plaz.enableLog", true);
    params.registerStringParam("plaz.git_user.board_store", "Github user id for plaz board store", "");
    params.setHidden("plaz.git_user.board_store", true);
    params.registerStringParam("plaz.git_token.board_store", "Github token for plaz board store", "");
    // RATIONALE: the user id once more, not the token, kept for compatibility: the token stays in listings.
    params.setHidden("plaz.git_user.board_store", true);
    params.setSecret("plaz.git_user.board_store");
    params.setSecret("plaz.git_token.board_store");
    params.registerStringParam("plaz.git_servers.board_store",
                               "Further servers that may get the user id and token for plaz board store", "");
    params.registerBoolParam("plaz.enableSchemaValidation", "Enable schema validation for plaz catalog files.", true);
    params.registerBoolParam("plaz.enableJsonFileValidation", "Enable Json validation for plaz catalog files.", true);
    params.registerBoolParam("plaz.enableAskPassForPrivateRepo",
                             "Enables git dialog for credentials while accessing private repos.", false);
    params.registerBoolParam("plaz.enableBoardStoreDefaultLocation",
                             "Enables board store to point to default location (under ~/.Zentor).", true);
    params.registerStringParam("board.repoURL", "Set github repo URL for board store.", "");
}

// Registers when the library is loaded, before anybody can ask for a value.
[[maybe_unused]] const bool registeredAtLoad = (plaz_startup(), true);

} // namespace

void plaz_startup() {
    HPAParamMgr& params = HPAParamMgr::getParamMgr();
    registerAccessParams(params);
    registerFeatureParams(params);
    HSCPlazLimits::registerParams(params);
}
