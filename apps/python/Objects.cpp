#include "Objects.h"

#include "ItemReference.h"
#include "ObjectProperties.h"
#include "ShellMsg.h"
#include "Text.h"

#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"

namespace py = pybind11;

namespace {

bool isPythonExiting() {
#if PY_VERSION_HEX >= 0x030D0000
    return Py_IsInitialized() == 0 || Py_IsFinalizing() != 0;
#else
    return Py_IsInitialized() == 0 || _Py_IsFinalizing() != 0;
#endif
}

// Runs in the middle of the cache's tables: no Python code, nothing let go of.
void markInvalid(PyObject* object) {
    const py::handle script(object);
    if (py::isinstance<ItemHandle>(script))
        script.cast<ItemHandle&>().native = nullptr;
    else
        script.cast<StoreHandle&>().native = nullptr;
}

py::object toPython(const PropertyValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return ::toPython(*text);
    if (const auto* flag = std::get_if<bool>(&value)) return py::bool_(*flag);
    if (const auto* number = std::get_if<std::int64_t>(&value)) return py::int_(*number);
    py::list texts;
    for (const std::string& text : std::get<std::vector<std::string>>(value)) texts.append(::toPython(text));
    return texts;
}

const char* stateOf(const HSCPlazQItem& item) {
    return item.IsInstalled() ? " installed" : " not installed";
}

const char* stateOf(const HSCPlazQStore&) {
    return "";
}

} // namespace

template <> std::string ItemHandle::referenceOf(const HSCPlazQItem& item) {
    return ItemReference::of(item).toText();
}

template <> std::string StoreHandle::referenceOf(const HSCPlazQStore& store) {
    return store.getName();
}

template <typename Native> Native& Handle<Native>::get() const {
    if (native) return *native;
    throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", ShellMsg::objectGone, reference));
}

template <typename Native>
py::class_<Handle<Native>> defineClass(py::module_& module, const char* name, const char* description) {
    py::class_<Handle<Native>> type(module, name, description, py::is_final());
    type.attr("__module__") = "plaz";
    for (const Property<Native>& property : propertiesOf<Native>())
        type.def_property_readonly(
            property.name,
            [&property](const Handle<Native>& self) {
                return callHub([&](Call&) { return toPython(property.get(self.get())); });
            },
            (std::string(property.description) + ".").c_str());
    type.def("__repr__", [name](const Handle<Native>& self) {
        const char* state = self.native ? stateOf(*self.native) : " gone";
        return toPython("<plaz." + std::string(name) + " " + self.reference + state + ">");
    });
    type.def("__str__", [](const Handle<Native>& self) { return toPython(self.reference); });
    return type;
}

void serveCaches() {
    hdi::pyinfra::py_native_cache_base::attach({markInvalid, isPythonExiting});
}

template struct Handle<HSCPlazQItem>;
template struct Handle<HSCPlazQStore>;
template py::class_<ItemHandle> defineClass(py::module_&, const char*, const char*);
template py::class_<StoreHandle> defineClass(py::module_&, const char*, const char*);
