#include "Settings.h"

#include "Call.h"
#include "HubParams.h"
#include "HubPreferences.h"
#include "Secrets.h"

#include "support/HCCXPrefMgr.h"
#include "support/HPAParamMgr.h"

namespace py = pybind11;

namespace {

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

std::string textOf(py::handle text, const char* complaint) {
    if (!py::isinstance<py::str>(text)) throw py::type_error(complaint);
    return text.cast<Text>().value;
}

std::string nameOf(const py::object& name) {
    return textOf(name, "a name is a str");
}

std::string valueOf(const py::object& value) {
    if (py::isinstance<py::bool_>(value)) return value.cast<bool>() ? "true" : "false";
    if (py::isinstance<py::int_>(value)) return py::str(value).cast<std::string>();
    return textOf(value, "a parameter takes a str, an int or a bool");
}

std::vector<std::string> valuesOf(const py::object& values) {
    const char* const complaint = "a preference takes a list of str";
    if (!py::isinstance<py::list>(values) && !py::isinstance<py::tuple>(values)) throw py::type_error(complaint);
    std::vector<std::string> texts;
    for (const py::handle value : values) texts.push_back(textOf(value, complaint));
    return texts;
}

void requireWhole(const std::string& setting, const std::string& value) {
    if (isMasked(setting, value)) throw py::value_error("the value is masked: give it whole");
}

} // namespace

py::object getParam(const Text& name) {
    return callHub([&](Call&) { return valueOf(requireParam(name.value)); });
}

void setParam(const py::object& name, const py::object& value) {
    const std::string known = nameOf(name);
    const std::string text = valueOf(value);
    callHub([&](Call&) {
        requireWhole(requireParam(known).getName(), text);
        if (!HPAParamMgr::getParamMgr().setValue(known, text))
            throw py::value_error("the parameter " + known + " does not take such a value");
        return true;
    });
}

void resetParam(const Text& name) {
    callHub([&](Call&) { return HPAParamMgr::getParamMgr().resetValue(requireParam(name.value).getName()); });
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
            values.append(toPython(shownValue(name.value, value)));
        return values;
    });
}

void setPreference(const py::object& name, const py::object& values) {
    const std::string wanted = nameOf(name);
    const std::vector<std::string> texts = valuesOf(values);
    callHub([&](Call&) {
        for (const std::string& text : texts) requireWhole(wanted, text);
        savePreference(wanted, texts);
        return true;
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
