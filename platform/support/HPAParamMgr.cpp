#include "support/HPAParamMgr.h"

#include "support/HCCXPrefMgr.h"
#include "support/HUTEnv.h"
#include "support/HUTText.h"
#include "support/HostMsg.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <optional>
#include <unordered_map>

namespace {

std::string toText(bool value) {
    return value ? "true" : "false";
}

std::optional<bool> parseBool(const std::string& text) {
    const std::string word = HUTText::lowered(text);
    if (word == "true" || word == "yes" || word == "on" || word == "1") return true;
    if (word == "false" || word == "no" || word == "off" || word == "0") return false;
    return std::nullopt;
}

std::optional<int> parseInt(const std::string& text) {
    int value = 0;
    const char* end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || last != end) return std::nullopt;
    return value;
}

// Of another type: false, 0.
bool toBool(const HPAParam& param) {
    return param.getType() == HPAParam::Type::boolean && parseBool(param.getValue()).value_or(false);
}
int toInt(const HPAParam& param) {
    return param.getType() == HPAParam::Type::integer ? parseInt(param.getValue()).value_or(0) : 0;
}

// The text in the form in which values are kept; nothing when it does not fit the type.
std::optional<std::string> normalize(HPAParam::Type type, const std::string& text) {
    switch (type) {
    case HPAParam::Type::boolean:
        if (const auto value = parseBool(text)) return toText(*value);
        return std::nullopt;
    case HPAParam::Type::integer:
        if (const auto value = parseInt(text)) return std::to_string(*value);
        return std::nullopt;
    case HPAParam::Type::string:
        break;
    }
    return text;
}

std::optional<std::string> keptOf(const HPAParam& param) {
    const std::vector<std::string> kept = HCCXPrefMgr::getInstance().getDefaultXPref().getVal(param.getName());
    return kept.empty() ? std::nullopt : std::optional(kept.front());
}

} // namespace

std::string HPAParam::getVariable() const {
    if (m_isSecret) return {};
    std::string variable;
    for (const char c : m_name)
        variable += c == '.' ? '_' : static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return variable;
}

class HPAParamMgr::Impl {
public:
    /// The parameter as it is registered, whatever is kept of it.
    HPAParam* findRegistered(const std::string& name) const {
        const auto found = m_byName.find(HUTText::lowered(name));
        return found == m_byName.end() ? nullptr : found->second;
    }

    HPAParam* find(const std::string& name) {
        settleAll();
        return findRegistered(name);
    }

    const std::vector<std::unique_ptr<HPAParam>>& getAll() {
        settleAll();
        return m_params;
    }

    void add(HPAParam param) {
        const auto [place, isNew] = m_byName.try_emplace(HUTText::lowered(param.getName()), nullptr);
        if (!isNew) return;
        m_params.push_back(std::make_unique<HPAParam>(std::move(param)));
        place->second = m_params.back().get();
        if (m_isSettled) settle(*place->second);
    }

    static bool set(HPAParam& param, const std::string& text, HPAParam::Source source) {
        auto value = normalize(param.getType(), text);
        if (!value) return false;
        param.m_value = std::move(*value);
        param.m_source = source;
        return true;
    }

    static void reset(HPAParam& param) {
        param.m_value = param.m_default;
        param.m_source = HPAParam::Source::builtIn;
    }

    /// Gives the parameter what its variable says, else what the user keeps, else its default.
    static void settle(HPAParam& param) {
        reset(param);
        const std::optional<std::string> kept = keptOf(param);
        if (kept && !set(param, *kept, HPAParam::Source::user))
            ComMsgMgr::send(HostMsg::paramUnfit, MsgSeverity::warning, param.getName(), HCCXPrefMgr::getFile());
        const std::string variable = param.getVariable();
        std::string value;
        if (!variable.empty() && HUTEnv::getEnv(variable, value) && !set(param, value, HPAParam::Source::environment))
            ComMsgMgr::send(HostMsg::paramUnfit, MsgSeverity::warning, param.getName(), variable);
    }

private:
    /// Not when they are registered: that is when the library is loaded, and those who listen are not there yet.
    void settleAll() {
        if (m_isSettled) return;
        m_isSettled = true;
        for (const auto& param : m_params) settle(*param);
    }

    std::vector<std::unique_ptr<HPAParam>> m_params;
    std::unordered_map<std::string, HPAParam*> m_byName;
    bool m_isSettled = false;
};

HPAParamMgr& HPAParamMgr::getParamMgr() {
    static HPAParamMgr manager;
    return manager;
}

HPAParamMgr::HPAParamMgr() : m_impl(std::make_unique<Impl>()) {}

HPAParamMgr::~HPAParamMgr() = default;

void HPAParamMgr::registerBoolParam(const std::string& name, const std::string& description, bool defaultValue) {
    m_impl->add({name, description, HPAParam::Type::boolean, toText(defaultValue)});
}

void HPAParamMgr::registerIntParam(const std::string& name, const std::string& description, int defaultValue) {
    m_impl->add({name, description, HPAParam::Type::integer, std::to_string(defaultValue)});
}

void HPAParamMgr::registerStringParam(const std::string& name, const std::string& description,
                                      const std::string& defaultValue) {
    m_impl->add({name, description, HPAParam::Type::string, defaultValue});
}

void HPAParamMgr::setHidden(const std::string& name, bool hidden) {
    if (HPAParam* param = m_impl->findRegistered(name)) param->m_hidden = hidden;
}

void HPAParamMgr::setSecret(const std::string& name) {
    if (HPAParam* param = m_impl->findRegistered(name)) param->m_isSecret = true;
}

const HPAParam* HPAParamMgr::findParam(const std::string& name) const {
    return m_impl->find(name);
}

bool HPAParamMgr::getValueAsBool(const std::string& name) const {
    const HPAParam* param = m_impl->find(name);
    return param && toBool(*param);
}

int HPAParamMgr::getValueAsInt(const std::string& name) const {
    const HPAParam* param = m_impl->find(name);
    return param ? toInt(*param) : 0;
}

std::string HPAParamMgr::getValueAsString(const std::string& name) const {
    const HPAParam* param = m_impl->find(name);
    return param && param->getType() == HPAParam::Type::string ? param->getValue() : std::string();
}

bool HPAParamMgr::getValueIfExistAsBool(const std::string& name, bool fallback) const {
    const HPAParam* param = m_impl->find(name);
    return param ? toBool(*param) : fallback;
}

int HPAParamMgr::getValueIfExistAsInt(const std::string& name, int fallback) const {
    const HPAParam* param = m_impl->find(name);
    return param ? toInt(*param) : fallback;
}

bool HPAParamMgr::setValue(const std::string& name, const std::string& text) {
    HPAParam* param = m_impl->find(name);
    return param && Impl::set(*param, text, HPAParam::Source::session);
}

bool HPAParamMgr::resetValue(const std::string& name) {
    HPAParam* param = m_impl->find(name);
    if (param) Impl::reset(*param);
    return param != nullptr;
}

HPAParamMgr::Kept HPAParamMgr::keepValue(const std::string& name, const std::string& text) {
    HPAParam* param = m_impl->find(name);
    const auto value = param ? normalize(param->getType(), text) : std::nullopt;
    return value ? save(*param, {*value}) : Kept::refused;
}

HPAParamMgr::Kept HPAParamMgr::forgetValue(const std::string& name) {
    HPAParam* param = m_impl->find(name);
    return param ? save(*param, {}) : Kept::refused;
}

HPAParamMgr::Kept HPAParamMgr::save(HPAParam& param, const std::vector<std::string>& kept) {
    HCCXPref& preferences = HCCXPrefMgr::getInstance().getDefaultXPref();
    const std::vector<std::string> before = preferences.getVal(param.getName());
    preferences.setVal(param.getName(), kept);
    if (!HCCXPrefUtils::savePreferences()) {
        preferences.setVal(param.getName(), before);
        return Kept::unsaved;
    }
    Impl::settle(param);
    return param.getSource() == HPAParam::Source::environment ? Kept::overruled : Kept::done;
}

std::optional<std::string> HPAParamMgr::getKept(const std::string& name) const {
    const HPAParam* param = findParam(name);
    return param ? keptOf(*param) : std::nullopt;
}

std::vector<const HPAParam*> HPAParamMgr::list(bool withHidden) const {
    std::vector<const HPAParam*> listed;
    for (const auto& param : m_impl->getAll())
        if (withHidden || !param->isHidden()) listed.push_back(param.get());
    return listed;
}
