#pragma once

#include "Call.h"

#include "plaz/bindings/HSCPlazScriptCaches.h"

#include <new>
#include <string>
#include <utility>

class HSCPlazQItem;
class HSCPlazQStore;

/// A Python object that stands for a store or an item. It is in the object cache from its making to its end, so that
/// the same store or item is the same Python object as long as anybody has it.
///
/// Python objects die on any thread, one of them while another thread's call waits. They take themselves out of the
/// cache under the interpreter lock. Nobody is in the middle of the tables then: the hub lets go of the lock in
/// Call::waitUnlocked() and in callbacks only, and destroying a store or item neither waits nor calls back.
///
/// RATIONALE: made with the interpreter's own means, for scripts walk over thousands of them: a class of pybind11 costs
/// four times as much for each object and each property.
template <typename Native> struct Handle {
    using Cache = hdi::pyinfra::py_native_cache<Native*>;

    PyObject base;         ///< what every object begins with
    Native* native;        ///< null once it is gone
    std::string reference; ///< what it was, once it is gone
    PyObject* weakReferences;

    /// The Python class; made by defineClass().
    static inline PyTypeObject* type = nullptr;
    /// The object as what it is; null for any other.
    static Handle* of(pybind11::handle object) {
        return Py_TYPE(object.ptr()) == type ? reinterpret_cast<Handle*>(object.ptr()) : nullptr;
    }

    pybind11::object toObject() const {
        return pybind11::reinterpret_borrow<pybind11::object>(const_cast<PyObject*>(&base));
    }
    /// @throws HEXAll ShellMsg::objectGone
    Native& get() const;
    /// The reference that finds the same again.
    std::string getReference() const;
};

using ItemHandle = Handle<HSCPlazQItem>;
using StoreHandle = Handle<HSCPlazQStore>;

/// The Python object of a store or item, made where there is none.
template <typename Native> pybind11::object wrap(Native& native) {
    using Cache = typename Handle<Native>::Cache;
    if (PyObject* known = Cache::tables::find_script(Cache::get_n2py_cache(), &native))
        return pybind11::reinterpret_borrow<pybind11::object>(known);
    auto* handle = PyObject_New(Handle<Native>, Handle<Native>::type);
    if (!handle) throw pybind11::error_already_set();
    handle->native = &native;
    new (&handle->reference) std::string();
    handle->weakReferences = nullptr;
    auto* object = reinterpret_cast<PyObject*>(handle);
    Cache::add(&native, object);
    return pybind11::reinterpret_steal<pybind11::object>(object);
}

/// Defines the class of stores or of items with what the object itself knows: the properties, each by its own name, and
/// its texts.
template <typename Native> void defineClass(pybind11::module_& module, const char* name, const char* description);

/// Adds a method to the class of stores or of items. @param extra  what pybind11 takes for one
template <typename Native, typename Function, typename... Extra>
void defineMethod(const char* name, Function&& function, const Extra&... extra) {
    const pybind11::handle type(reinterpret_cast<PyObject*>(Handle<Native>::type));
    type.attr(name) = pybind11::cpp_function(std::forward<Function>(function), pybind11::name(name),
                                             pybind11::is_method(type), extra...);
}

/// Lends the object caches what they need of Python.
void serveCaches();

/// Lets functions for Python take stores and items.
template <typename Native> struct pybind11::detail::type_caster<Handle<Native>> {
    static constexpr auto name = const_name("object");
    template <typename> using cast_op_type = Handle<Native>&;

    bool load(handle source, bool) {
        m_handle = Handle<Native>::of(source);
        return m_handle != nullptr;
    }
    operator Handle<Native>&() { return *m_handle; }

private:
    Handle<Native>* m_handle = nullptr;
};
