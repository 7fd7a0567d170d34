#include "scripting/py_native_cache.h"

#include "support/HostMsg.h"

namespace hdi::pyinfra {

namespace {

py_native_cache_base::runtime lent{nullptr, nullptr};

} // namespace

void py_native_cache_base::attach(const runtime& python) {
    lent = python;
}

bool py_native_cache_base::py_exiting() {
    return lent.exiting && lent.exiting();
}

void py_native_cache_base::mark_invalid(PyObject* object) {
    if (lent.mark_invalid) lent.mark_invalid(object);
}

void py_native_cache_base::error(const std::string& text) {
    ComMsgMgr::send(HostMsg::scriptCacheError, MsgSeverity::error, text);
}

} // namespace hdi::pyinfra
