#include "Settings.h"

#include "Call.h"
#include "HubParams.h"
#include "ShellMsg.h"

#include "support/HCCXPrefMgr.h"
#include "support/HPAParamMgr.h"

namespace py = pybind11;

namespace {

const HPAParam& findParam(const std::string& name) {
    if (const HPAParam* param = HPAParamMgr::getParamMgr().findParam(name)) return *param;
    throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", ShellMsg::paramUnknown, name));
}

py::object valueOf(const HPAParam& param) {
    const HPAParamMgr& params = HPAParamMgr::getParamMgr();
    switch (param.getType()) {
    case HPAParam::Type::boolean:
        return py::bool_(params.getValueAsBool(param.getName()));
    case HPAParam::Type::integer:
        return py::int_(params.getValueAsInt(param.getName()));
    case HPAParam::Type::string:
        break;
    }
    return toPython(shownValue(param));
}

std::string textOf(const py::object& value) {
    if (py::isinstance<py::bool_>(value)) return value.cast<bool>() ? "true" : "false";
    if (py::isinstance<py::int_>(value)) return py::str(value).cast<std::string>();
    if (py::isinstance<py::str>(value)) return value.cast<Text>().value;
    throw py::type_error("a parameter takes a str, an int or a bool");
}

} // namespace

py::object getParam(const Text& name) {
    return callHub([&](Call&) { return valueOf(findParam(name.value)); });
}

void setParam(const Text& name, const py::object& value) {
    const std::string text = textOf(value);
    callHub([&](Call&) {
        findParam(name.value);
        // The value, which may be a secret, is not repeated.
        if (!HPAParamMgr::getParamMgr().setValue(name.value, text))
            throw py::value_error("the parameter " + name.value + " does not take such a value");
        return true;
    });
}

void resetParam(const Text& name) {
    callHub([&](Call&) { return HPAParamMgr::getParamMgr().resetValue(findParam(name.value).getName()); });
}

std::vector<std::string> listParams() {
    return callHub([](Call&) {
        std::vector<std::string> names;
        for (const HPAParam* param : findParams("", false)) names.push_back(param->getName());
        return names;
    });
}

py::list getPreference(const Text& name) {
    return callHub([&](Call&) {
        py::list values;
        for (const std::string& value : HCCXPrefMgr::getInstance().getDefaultXPref().getVal(name.value))
            values.append(toPython(value));
        return values;
    });
}

void setPreference(const Text& name, const std::vector<Text>& values) {
    std::vector<std::string> wanted;
    for (const Text& value : values) wanted.push_back(value.value);
    callHub([&](Call& call) {
        HCCXPref& preferences = HCCXPrefMgr::getInstance().getDefaultXPref();
        const std::vector<std::string> before = preferences.getVal(name.value);
        preferences.setVal(name.value, wanted);
        if (HCCXPrefUtils::savePreferences()) return true;
        preferences.setVal(name.value, before);
        call.fail();
    });
}

py::list listPreferences() {
    return callHub([](Call&) {
        const HCCXPref& preferences = HCCXPrefMgr::getInstance().getDefaultXPref();
        py::list names;
        for (const std::string& name : preferences.getNames())
            if (!preferences.getVal(name).empty()) names.append(toPython(name));
        return names;
    });
}
