#include "Secrets.h"

#include "plaz/base/HSCPlazNames.h"
#include "plaz/base/HSCPlazTrust.h"
#include "support/HCCXPrefMgr.h"
#include "support/HPAParamMgr.h"
#include "support/HUTText.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

namespace {

constexpr const char* mask = "***";
constexpr std::array<const char*, 2> credentials{"plaz.git_user", "plaz.git_token"}; ///< what their names begin with
constexpr std::array<const char*, 2> proxies{"http_proxy", "https_proxy"};           ///< behind "plaz."

bool isCredential(const std::string& setting) {
    const std::string name = HUTText::lowered(setting);
    return std::any_of(credentials.begin(), credentials.end(),
                       [&](const char* begin) { return name.rfind(begin, 0) == 0; });
}

bool isWordPart(const std::string& text, std::size_t at) {
    return at < text.size() && std::isalnum(static_cast<unsigned char>(text[at])) != 0;
}

/// Replaces @p word, which may be empty, where it is no part of a longer one.
void replaceWord(std::string& text, const std::string& word, const std::string& replacement) {
    if (word.empty()) return;
    for (std::size_t at = text.find(word); at != std::string::npos; at = text.find(word, at)) {
        const std::size_t end = at + word.size();
        const bool isPart = (at > 0 && isWordPart(text, at - 1) && isWordPart(text, at)) ||
                            (isWordPart(text, end - 1) && isWordPart(text, end));
        if (!isPart) text.replace(at, word.size(), replacement);
        at += isPart ? 1 : replacement.size();
    }
}

bool isHarmlessParam(const std::string& name) {
    return HPAParamMgr::getParamMgr().findParam(name) && !isSecret(name);
}

bool isHarmlessPreference(const std::string& name) {
    return HUTText::equalIgnoringCase(name, HSCPlazName::storesPath);
}

/// Whether @p setter stands in the command, on its own or in another command, with a name behind it that is not,
/// letter for letter, one whose values are no secrets.
bool setsMoreThanHarmless(const std::string& command, const std::string& setter,
                          bool (*isHarmless)(const std::string& name)) {
    const auto isNamePart = [&](std::size_t at) {
        return isWordPart(command, at) || (at < command.size() && command[at] == '_');
    };
    for (std::size_t at = command.find(setter); at != std::string::npos; at = command.find(setter, at + 1)) {
        const std::size_t end = at + setter.size();
        if ((at > 0 && isNamePart(at - 1)) || isNamePart(end)) continue; // another command
        const std::size_t name = std::min(command.find_first_not_of(" \t", end), command.size());
        const std::size_t nameEnd = std::min(command.find_first_of(" \t\n", name), command.size());
        if (!isHarmless(command.substr(name, nameEnd - name))) return true;
    }
    return false;
}

} // namespace

bool isProxySetting(const std::string& setting) {
    const std::string name = HUTText::lowered(setting);
    return std::any_of(proxies.begin(), proxies.end(),
                       [&](const char* proxy) { return name == std::string("plaz.") + proxy; });
}

bool isSecret(const std::string& setting) {
    return isProxySetting(setting) || isCredential(setting);
}

std::string shownValue(const std::string& setting, const std::string& value) {
    if (isCredential(setting) && !value.empty()) return mask;
    return isProxySetting(setting) ? HSCPlazTrust::maskProxy(value) : HSCPlazTrust::maskSecrets(value);
}

std::string shownValue(const HPAParam& param) {
    return shownValue(param.getName(), param.getValue());
}

bool isMasked(const std::string& setting, const std::string& value) {
    const std::size_t begin = isSecret(setting) ? 0 : value.find("://");
    return begin != std::string::npos && value.find(mask, begin) != std::string::npos;
}

std::string shownCommand(const std::string& command) {
    constexpr std::string_view setter = "set_param ";
    const std::size_t nameEnd = command.find(' ', setter.size());
    if (command.compare(0, setter.size(), setter) != 0 || nameEnd == std::string::npos)
        return HSCPlazTrust::maskSecrets(command);
    const std::string name = command.substr(setter.size(), nameEnd - setter.size());
    return command.substr(0, nameEnd + 1) + shownValue(name, command.substr(nameEnd + 1));
}

std::string withoutSecrets(std::string text) {
    for (const HPAParam* param : HPAParamMgr::getParamMgr().list(true))
        if (isSecret(param->getName())) replaceWord(text, param->getValue(), shownValue(*param));
    const HCCXPref& preferences = HCCXPrefMgr::getInstance().getDefaultXPref();
    for (const std::string& name : preferences.getNames())
        if (isSecret(name))
            for (const std::string& value : preferences.getVal(name)) replaceWord(text, value, shownValue(name, value));
    return HSCPlazTrust::maskSecrets(text);
}

bool mayHoldSecret(const std::string& command) {
    const std::string lowered = HUTText::lowered(command);
    const auto isMentioned = [&](const char* name) { return lowered.find(name) != std::string::npos; };
    return std::any_of(credentials.begin(), credentials.end(), isMentioned) ||
           std::any_of(proxies.begin(), proxies.end(), isMentioned) || withoutSecrets(command) != command ||
           setsMoreThanHarmless(command, "set_param", isHarmlessParam) ||
           setsMoreThanHarmless(command, "set_property", isHarmlessPreference);
}
