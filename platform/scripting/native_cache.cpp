#include "scripting/native_cache.h"

#include "scripting/task_manager.h"
#include "support/HostMsg.h"

#include <tcl.h>

namespace hdi::tcltasks {

namespace {

int become_invalid(Tcl_Interp* interp, Tcl_Obj* object);

// An object of this type has its text and nothing else.
const Tcl_ObjType invalid_type{"invalid object", nullptr, nullptr, nullptr, become_invalid};

int become_invalid(Tcl_Interp* /*interp*/, Tcl_Obj* object) {
    Tcl_GetString(object); // the text is made before what it is made from goes
    if (object->typePtr && object->typePtr->freeIntRepProc) object->typePtr->freeIntRepProc(object);
    object->typePtr = &invalid_type;
    return TCL_OK;
}

} // namespace

bool native_cache_base::tcl_exiting() {
    return task_manager::is_exiting();
}

void native_cache_base::mark_invalid(Tcl_Obj* object) {
    Tcl_ConvertToType(nullptr, object, &invalid_type);
}

bool native_cache_base::is_invalid(const Tcl_Obj* object) {
    return object->typePtr == &invalid_type;
}

void native_cache_base::incr_refcount(Tcl_Obj* object) {
    Tcl_IncrRefCount(object);
}

void native_cache_base::decr_refcount(Tcl_Obj* object) {
    Tcl_DecrRefCount(object);
}

void native_cache_base::error(const std::string& text) {
    ComMsgMgr::send(HostMsg::scriptCacheError, MsgSeverity::error, text);
}

} // namespace hdi::tcltasks
