#include "plaz/base/HSCPlazProduct.h"

#include "plaz/base/HSCPlazDebugLog.h"
#include "support/HPAParamMgr.h"
#include "support/HUTEnv.h"
#include "support/HUTText.h"

namespace {

constexpr const char* fallbackName = "Solvan";
constexpr const char* fallbackVersion = "2018.3";

bool isMainTool() {
    return HUTText::equalIgnoringCase(HUTEnv::getProductName(), "solvan");
}

bool isDatabaseTool() {
    return HUTEnv::getProductName() == "kvq";
}

std::string versionForPaths() {
    const std::string version = HUTEnv::getProductVersionExcludingPatch();
    const std::string majorMinor = HUTEnv::getProductMajorMinorVersion();
    return version == majorMinor + ".0" ? majorMinor : version;
}

void replaceIfEmpty(std::string& text, const char* parameter, const char* fallback) {
    if (text.empty()) text = HPAParamMgr::getParamMgr().getValueAsString(parameter);
    if (text.empty()) text = fallback;
}

} // namespace

HSCPlazProduct::Identity HSCPlazProduct::get() {
    static constexpr const char* self = "HSCPlazUtils::getProductInfo";
    Identity identity{HUTEnv::getProductName(), versionForPaths()};
    if (HPAParamMgr::getParamMgr().getValueIfExistAsBool("misc.enablePlazBoardStore", false)) {
        replaceIfEmpty(identity.name, "plaz.product_name", fallbackName);
        replaceIfEmpty(identity.version, "plaz.product_version", fallbackVersion);
    }
    HSCPlazDebugLog::inside(self, " product name = ", identity.name);
    HSCPlazDebugLog::inside(self, " product version = ", identity.version);
    return identity;
}

std::string HSCPlazProduct::getUserDataDir() {
    const std::string appData = HUTEnv::getHDIAppDataDir();
    const std::string version = get().version;
    return version.empty() ? appData : appData + "/" + version;
}

HSCPlazProduct::ProxySource HSCPlazProduct::getProxySource() {
    if (isMainTool()) return ProxySource::parameters;
    return isDatabaseTool() ? ProxySource::preference : ProxySource::nobody;
}

bool HSCPlazProduct::bringsTools() {
    return isMainTool();
}

bool HSCPlazProduct::keepsCatalogInDatabase() {
    return isDatabaseTool();
}

bool HSCPlazProduct::mayMoveEveryStore() {
    return isDatabaseTool();
}
