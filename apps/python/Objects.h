#pragma once

#include "Call.h"

#include "plaz/bindings/HSCPlazScriptCaches.h"

#include <memory>
#include <string>

class HSCPlazQItem;
class HSCPlazQStore;

/// What a Python object holds of a store or an item. It is in the object cache from its making to its end, so that the
/// same store or item is the same Python object as long as anybody has it.
///
/// Python objects die on any thread, one of them while another thread's call waits. They take themselves out of the
/// cache under the interpreter lock. Nobody is in the middle of the tables then: the hub lets go of the lock in
/// Call::waitUnlocked() and in callbacks only, and destroying a store or item neither waits nor calls back.
template <typename Native> struct Handle {
    using Cache = hdi::pyinfra::py_native_cache<Native*>;

    explicit Handle(Native& wrapped) : native(&wrapped), reference(referenceOf(wrapped)) {}
    ~Handle() { Cache::remove(self); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    /// The reference that finds the same again.
    static std::string referenceOf(const Native& native);

    /// @throws HEXAll ShellMsg::objectGone
    Native& get() const;

    Native* native; ///< null once it is gone
    std::string reference;
    PyObject* self = nullptr;
};

using ItemHandle = Handle<HSCPlazQItem>;
using StoreHandle = Handle<HSCPlazQStore>;

/// The Python object of a store or item, made where there is none.
template <typename Native> pybind11::object wrap(Native& native) {
    using Cache = typename Handle<Native>::Cache;
    if (PyObject* known = Cache::tables::find_script(Cache::get_n2py_cache(), &native))
        return pybind11::reinterpret_borrow<pybind11::object>(known);
    pybind11::object object = pybind11::cast(std::make_unique<Handle<Native>>(native));
    object.cast<Handle<Native>&>().self = object.ptr();
    Cache::add(&native, object.ptr());
    return object;
}

/// Defines the class of stores or of items with what the object itself knows: the properties, each by its own name, and
/// its texts.
template <typename Native>
pybind11::class_<Handle<Native>> defineClass(pybind11::module_& module, const char* name, const char* description);

/// Lends the object caches what they need of Python.
void serveCaches();
