#pragma once

#include "scripting/native_cache.h"

namespace hdi::tcltasks {

// The tables are never destroyed: native objects may outlive every static object.
template <typename Native>
typename native_cache<Native*>::tables::native_to_script& native_cache<Native*>::get_n2t_cache() {
    static auto& scripts = *new typename tables::native_to_script;
    return scripts;
}

template <typename Native>
typename native_cache<Native*>::tables::script_to_native& native_cache<Native*>::get_t2n_cache() {
    static auto& natives = *new typename tables::script_to_native;
    return natives;
}

template <typename Native> bool& native_cache<Native*>::observers() {
    static bool is_on = false;
    if (tcl_exiting()) is_on = false;
    return is_on;
}

template <typename Native> void native_cache<Native*>::add(Native* native, Tcl_Obj* script) {
    incr_refcount(script);
    tables::add(get_n2t_cache(), get_t2n_cache(), native, script);
    observers() = true;
}

template <typename Native> void native_cache<Native*>::native_destroyed(const Native* native) {
    if (!observers() || tcl_exiting()) return;
    const auto invalidate = [](Tcl_Obj* script) {
        mark_invalid(script);
        decr_refcount(script);
    };
    tables::remove_native(get_n2t_cache(), get_t2n_cache(), native, invalidate,
                          [] { error("native_cache<> corrupt"); });
}

} // namespace hdi::tcltasks
