#pragma once

#include "scripting/script_tables.h"
#include "support/HostExport.h"

#include <string>

struct Tcl_Obj;

namespace hdi::tcltasks {

/// What the object caches of all wrapped classes need of Tcl.
class HOST_API native_cache_base {
public:
    /// True from the moment when the interpreter begins to end.
    static bool tcl_exiting();
    /// Makes a script object one that stands for nothing any more; its text stays what it was.
    static void mark_invalid(Tcl_Obj* object);
    /// Whether mark_invalid() was called for the object and it has not been turned into something else since.
    static bool is_invalid(const Tcl_Obj* object);
    /// Lets go of the reference that a cache holds. The object may be gone afterwards.
    static void decr_refcount(Tcl_Obj* object);
    static void incr_refcount(Tcl_Obj* object);
    /// Sends @p text as HostMsg::scriptCacheError.
    static void error(const std::string& text);
};

template <typename Pointer> class native_cache;

/// The Tcl objects that wrap objects of one class, both ways. One set of tables per class and process, made at the
/// first use and kept until the process ends; not locked. The cache holds a reference to each script object, so none
/// vanishes or is changed in place while its native object lives, whatever a script turns its value into.
///
/// The members are defined in native_cache_impl.h, which exactly one source per class includes, so that all libraries
/// of a process share the tables.
template <typename Native> class native_cache<Native*> : public native_cache_base {
public:
    using tables = script_tables<Native, Tcl_Obj>;

    static typename tables::native_to_script& get_n2t_cache();
    static typename tables::script_to_native& get_t2n_cache();
    /// While false, destruction notifies nothing. Becomes true with the first add(), and false for good when the
    /// interpreter ends.
    static bool& observers();

    /// Enters a new script object and takes a reference to it.
    static void add(Native* native, Tcl_Obj* script);
    /// Marks every script object of a dying native object invalid and lets go of it. Its destructor calls this first.
    static void native_destroyed(const Native* native);
};

} // namespace hdi::tcltasks
