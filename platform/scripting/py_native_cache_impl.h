#pragma once

#include "scripting/py_native_cache.h"

namespace hdi::pyinfra {

// The tables are never destroyed: native objects may outlive every static object.
template <typename Native>
typename py_native_cache<Native*>::tables::native_to_script& py_native_cache<Native*>::get_n2py_cache() {
    static auto& scripts = *new typename tables::native_to_script;
    return scripts;
}

template <typename Native>
typename py_native_cache<Native*>::tables::script_to_native& py_native_cache<Native*>::get_py2n_cache() {
    static auto& natives = *new typename tables::script_to_native;
    return natives;
}

template <typename Native> bool& py_native_cache<Native*>::observers() {
    static bool is_on = false;
    if (py_exiting()) is_on = false;
    return is_on;
}

template <typename Native> void py_native_cache<Native*>::add(Native* native, PyObject* script) {
    tables::add(get_n2py_cache(), get_py2n_cache(), native, script);
    observers() = true;
}

template <typename Native> void py_native_cache<Native*>::remove(PyObject* script) {
    tables::remove(get_n2py_cache(), get_py2n_cache(), script);
}

template <typename Native> void py_native_cache<Native*>::native_destroyed(const Native* native) {
    if (!observers() || py_exiting()) return;
    tables::remove_native(
        get_n2py_cache(), get_py2n_cache(), native, [](PyObject* script) { mark_invalid(script); },
        [] { error("py_native_cache<> corrupt"); });
}

} // namespace hdi::pyinfra
