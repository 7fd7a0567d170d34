#include "plaz/bindings/HSCPlazScriptCaches.h"

#include "scripting/native_cache_impl.h"
#include "scripting/py_native_cache_impl.h"

template class hdi::tcltasks::native_cache<HSCPlazQStore*>;
template class hdi::tcltasks::native_cache<HSCPlazQItem*>;
template class hdi::pyinfra::py_native_cache<HSCPlazQStore*>;
template class hdi::pyinfra::py_native_cache<HSCPlazQItem*>;
