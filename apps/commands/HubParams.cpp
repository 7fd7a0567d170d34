#include "HubParams.h"

#include "Glob.h"

#include "plaz/base/HSCPlazTrust.h"
#include "support/HCCXPrefMgr.h"
#include "support/HPAParamMgr.h"
#include "support/HUTText.h"

#include <algorithm>
#include <cctype>

namespace {

bool isCredential(const HPAParam& param) {
    const std::string name = HUTText::lowered(param.getName());
    return name.rfind("plaz.git_user.", 0) == 0 || name.rfind("plaz.git_token.", 0) == 0;
}

bool isProxy(const HPAParam& param) {
    const std::string name = HUTText::lowered(param.getName());
    return name == "plaz.http_proxy" || name == "plaz.https_proxy";
}

/// Replaces @p word, which may be empty, where it is no part of a longer one.
void replaceWord(std::string& text, const std::string& word, const std::string& replacement) {
    if (word.empty()) return;
    const auto isInWord = [&](std::size_t at) {
        return at < text.size() && std::isalnum(static_cast<unsigned char>(text[at])) != 0;
    };
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at)) {
        const bool isPart = (at > 0 && isInWord(at - 1) && isInWord(at)) ||
                            (isInWord(at + word.size() - 1) && isInWord(at + word.size()));
        if (!isPart) text.replace(at, word.size(), replacement);
        at += isPart ? 1 : replacement.size();
    }
}

} // namespace

std::vector<const HPAParam*> findParams(const std::string& pattern, bool withHidden) {
    std::vector<const HPAParam*> params = HPAParamMgr::getParamMgr().list(withHidden);
    const auto isOther = [&](const HPAParam* param) { return !fitsGlob(pattern, param->getName()); };
    if (!pattern.empty()) params.erase(std::remove_if(params.begin(), params.end(), isOther), params.end());
    return params;
}

bool isSecret(const HPAParam& param) {
    return isProxy(param) || isCredential(param);
}

std::string shownValue(const HPAParam& param) {
    if (isCredential(param) && !param.getValue().empty()) return "***";
    return isProxy(param) ? HSCPlazTrust::maskProxy(param.getValue()) : HSCPlazTrust::maskSecrets(param.getValue());
}

std::string shownPreference(const std::string& name, const std::string& text) {
    return name == proxyPreference ? HSCPlazTrust::maskProxy(text) : text;
}

std::string withoutSecrets(std::string text) {
    for (const HPAParam* param : HPAParamMgr::getParamMgr().list(true))
        if (isSecret(*param)) replaceWord(text, param->getValue(), shownValue(*param));
    for (const std::string& proxy : HCCXPrefMgr::getInstance().getDefaultXPref().getVal(proxyPreference))
        replaceWord(text, proxy, shownPreference(proxyPreference, proxy));
    return HSCPlazTrust::maskSecrets(text);
}
