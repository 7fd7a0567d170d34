#include "Objects.h"

#include "Failure.h"
#include "ItemReference.h"
#include "ObjectProperties.h"
#include "ShellMsg.h"
#include "Text.h"

#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"

#include <cstddef>
#include <structmember.h>

namespace py = pybind11;

namespace {

std::string referenceOf(const HSCPlazQItem& item) {
    return ItemReference::of(item).toText();
}

std::string referenceOf(const HSCPlazQStore& store) {
    return store.getName();
}

const char* stateOf(const HSCPlazQItem& item) {
    return item.IsInstalled() ? " installed" : " not installed";
}

const char* stateOf(const HSCPlazQStore&) {
    return "";
}

template <typename Native> void forget(Handle<Native>& handle) {
    handle.reference = referenceOf(*handle.native); // it is still whole
    handle.native = nullptr;
}

// Runs in the middle of the cache's tables: no Python code, nothing let go of.
void markInvalid(PyObject* object) {
    if (ItemHandle* item = ItemHandle::of(object))
        forget(*item);
    else
        forget(*StoreHandle::of(object));
}

py::object toPython(const PropertyValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return ::toPython(*text);
    if (const auto* flag = std::get_if<bool>(&value)) return py::bool_(*flag);
    if (const auto* number = std::get_if<std::int64_t>(&value)) return py::int_(*number);
    py::list texts;
    for (const std::string& text : std::get<std::vector<std::string>>(value)) texts.append(::toPython(text));
    return texts;
}

/// Gives the interpreter what @p work answers, or the exception that it throws.
template <typename Work> PyObject* answer(Work work) noexcept {
    try {
        return py::object(work()).release().ptr();
    } catch (py::error_already_set& raised) {
        raised.restore();
    } catch (const py::builtin_exception& raised) {
        raised.set_error();
    } catch (const std::exception& failure) {
        PyErr_SetString(PyExc_RuntimeError, failure.what());
    }
    return nullptr;
}

template <typename Native> Handle<Native>& handleOf(PyObject* self) {
    return *reinterpret_cast<Handle<Native>*>(self);
}

template <typename Native> PyObject* getProperty(PyObject* self, void* property) {
    return answer([&] {
        return callHub([&](Call&) {
            return toPython(static_cast<const Property<Native>*>(property)->get(handleOf<Native>(self).get()));
        });
    });
}

template <typename Native> PyObject* toText(PyObject* self) {
    return answer([&] { return ::toPython(handleOf<Native>(self).getReference()); });
}

template <typename Native> PyObject* toRepr(PyObject* self) {
    return answer([&] {
        const Handle<Native>& handle = handleOf<Native>(self);
        const char* state = handle.native ? stateOf(*handle.native) : " gone";
        return ::toPython(std::string("<") + Py_TYPE(self)->tp_name + " " + handle.getReference() + state + ">");
    });
}

template <typename Native> void end(PyObject* self) {
    Handle<Native>& handle = handleOf<Native>(self);
    Handle<Native>::Cache::remove(self); // before Python code runs, which could be given the dying object
    if (handle.weakReferences) PyObject_ClearWeakRefs(self);
    handle.reference.~basic_string();
    PyTypeObject* type = Py_TYPE(self);
    PyObject_Free(self);
    Py_DECREF(type);
}

/// The properties as the interpreter wants them, up to one without a name. The texts last as long as the process.
template <typename Native> PyGetSetDef* listGetters() {
    static std::vector<std::string> descriptions;
    static std::vector<PyGetSetDef> getters;
    descriptions.reserve(propertiesOf<Native>().size());
    for (const Property<Native>& property : propertiesOf<Native>()) {
        descriptions.push_back(std::string(property.description) + ".");
        getters.push_back({property.name, getProperty<Native>, nullptr, descriptions.back().c_str(),
                           const_cast<Property<Native>*>(&property)});
    }
    getters.push_back({nullptr, nullptr, nullptr, nullptr, nullptr});
    return getters.data();
}

template <typename Function> void* slot(Function* function) {
    return reinterpret_cast<void*>(function);
}

} // namespace

template <typename Native> Native& Handle<Native>::get() const {
    if (native) return *native;
    failWith(ShellMsg::objectGone, reference);
}

template <typename Native> std::string Handle<Native>::getReference() const {
    return native ? referenceOf(*native) : reference;
}

template <typename Native> void defineClass(py::module_& module, const char* name, const char* description) {
    using Self = Handle<Native>;
    static const std::string qualified = std::string("plaz.") + name;
    static PyMemberDef members[] = {
        {"__weaklistoffset__", T_PYSSIZET, offsetof(Self, weakReferences), READONLY, nullptr},
        {nullptr, 0, 0, 0, nullptr}};
    PyType_Slot slots[] = {{Py_tp_doc, const_cast<char*>(description)},
                           {Py_tp_members, members},
                           {Py_tp_getset, listGetters<Native>()},
                           {Py_tp_repr, slot(toRepr<Native>)},
                           {Py_tp_str, slot(toText<Native>)},
                           {Py_tp_dealloc, slot(end<Native>)},
                           {0, nullptr}};
    PyType_Spec spec{qualified.c_str(), sizeof(Self), 0, Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION, slots};
    Self::type = reinterpret_cast<PyTypeObject*>(PyType_FromSpec(&spec));
    if (!Self::type) throw py::error_already_set();
    module.attr(name) = py::handle(reinterpret_cast<PyObject*>(Self::type));
}

void serveCaches() {
    hdi::pyinfra::py_native_cache_base::attach({markInvalid, isPythonEnding});
}

template struct Handle<HSCPlazQItem>;
template struct Handle<HSCPlazQStore>;
template void defineClass<HSCPlazQItem>(py::module_&, const char*, const char*);
template void defineClass<HSCPlazQStore>(py::module_&, const char*, const char*);
