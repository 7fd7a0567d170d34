#include "plaz/bindings/HSCPlazScriptCaches.h"

#include "plaz/model/HSCPlazDestruction.h"
#include "scripting/native_cache_impl.h"
#include "scripting/py_native_cache_impl.h"

template class hdi::tcltasks::native_cache<HSCPlazQStore*>;
template class hdi::tcltasks::native_cache<HSCPlazQItem*>;
template class hdi::pyinfra::py_native_cache<HSCPlazQStore*>;
template class hdi::pyinfra::py_native_cache<HSCPlazQItem*>;

namespace {

/// Makes the script objects of a dying store or item invalid, those of Tcl first.
template <typename Native> void forget(const Native* native) {
    hdi::tcltasks::native_cache<Native*>::native_destroyed(native);
    hdi::pyinfra::py_native_cache<Native*>::native_destroyed(native);
}

// Registered before the first store can go.
HSCPlazDestruction::Observer observer{forget<HSCPlazQStore>, forget<HSCPlazQItem>};
[[maybe_unused]] const bool isObserving = (HSCPlazDestruction::observe(observer), true);

} // namespace
