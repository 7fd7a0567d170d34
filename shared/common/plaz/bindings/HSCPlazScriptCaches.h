#pragma once

#include "plaz/base/PlazExport.h"
#include "scripting/native_cache.h"
#include "scripting/py_native_cache.h"

class HSCPlazQItem;
class HSCPlazQStore;

// The caches of the script objects that stand for stores and items, in Tcl and in Python. Whoever hands a store or an
// item to a script enters the script object; the caches observe the destruction of stores and items, and do the rest.
extern template class PLAZ_API hdi::tcltasks::native_cache<HSCPlazQStore*>;
extern template class PLAZ_API hdi::tcltasks::native_cache<HSCPlazQItem*>;
extern template class PLAZ_API hdi::pyinfra::py_native_cache<HSCPlazQStore*>;
extern template class PLAZ_API hdi::pyinfra::py_native_cache<HSCPlazQItem*>;
