#include "support/HPAParamMgr.h"

#include "support/HUTText.h"

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

} // namespace

struct HPAParamMgr::Impl {
    std::vector<std::unique_ptr<HPAParam>> params;
    std::unordered_map<std::string, HPAParam*> byName;

    HPAParam* find(const std::string& name) const {
        const auto found = byName.find(HUTText::lowered(name));
        return found == byName.end() ? nullptr : found->second;
    }

    void add(HPAParam param) {
        const auto [place, isNew] = byName.try_emplace(HUTText::lowered(param.getName()), nullptr);
        if (!isNew) return;
        params.push_back(std::make_unique<HPAParam>(std::move(param)));
        place->second = params.back().get();
    }
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
    if (HPAParam* param = m_impl->find(name)) param->m_hidden = hidden;
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
    if (!param) return false;
    auto value = normalize(param->getType(), text);
    if (!value) return false;
    param->m_value = std::move(*value);
    return true;
}

bool HPAParamMgr::resetValue(const std::string& name) {
    HPAParam* param = m_impl->find(name);
    if (!param) return false;
    param->m_value = param->m_default;
    return true;
}

std::vector<const HPAParam*> HPAParamMgr::list(bool withHidden) const {
    std::vector<const HPAParam*> listed;
    for (const auto& param : m_impl->params)
        if (withHidden || !param->isHidden()) listed.push_back(param.get());
    return listed;
}
