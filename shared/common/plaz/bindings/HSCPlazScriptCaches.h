#pragma once

#include "plaz/base/PlazExport.h"
#include "scripting/native_cache.h"
#include "scripting/py_native_cache.h"

class HSCPlazQItem;
class HSCPlazQStore;

// The caches of the script objects that stand for stores and items, in Tcl and in Python. Whoever hands a store or an
// item to a script enters the script object; the destructors of stores and items do the rest.
extern template class PLAZ_API hdi::tcltasks::native_cache<HSCPlazQStore*>;
extern template class PLAZ_API hdi::tcltasks::native_cache<HSCPlazQItem*>;
extern template class PLAZ_API hdi::pyinfra::py_native_cache<HSCPlazQStore*>;
extern template class PLAZ_API hdi::pyinfra::py_native_cache<HSCPlazQItem*>;

namespace HSCPlazScriptCaches {

/// Makes the script objects of a dying store or item invalid, those of Tcl first. Called before anything else of it
/// goes.
template <typename Native> void nativeDestroyed(const Native* native) {
    hdi::tcltasks::native_cache<Native*>::native_destroyed(native);
    hdi::pyinfra::py_native_cache<Native*>::native_destroyed(native);
}

} // namespace HSCPlazScriptCaches
