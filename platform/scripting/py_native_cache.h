#pragma once

#include "scripting/script_tables.h"
#include "support/HostExport.h"

#include <string>

// As Python's own headers declare it; nothing here needs more of it.
struct _object; // NOLINT(bugprone-reserved-identifier)
using PyObject = _object;

namespace hdi::pyinfra {

/// What the object caches of all wrapped classes need of Python. Python itself comes with the module that wraps the
/// objects; without one there is nothing to tell.
class HOST_API py_native_cache_base {
public:
    /// What the Python module lends. Both functions are called on the thread that destroys a native object, which must
    /// hold the interpreter lock unless the interpreter is exiting.
    struct runtime {
        void (*mark_invalid)(PyObject* object); ///< makes a script object one that stands for nothing any more
        bool (*exiting)();                      ///< the interpreter is ending or has ended
    };
    /// Called once, by the module that wraps objects, before it enters any.
    static void attach(const runtime& python);

    static bool py_exiting();
    static void mark_invalid(PyObject* object);
    /// Sends @p text as HostMsg::scriptCacheError.
    static void error(const std::string& text);
};

template <typename Pointer> class py_native_cache;

/// The Python objects that wrap objects of one class, both ways. One set of tables per class and process, made at the
/// first use and kept until the process ends; not locked. The cache holds no references: a script object takes itself
/// out when it dies.
///
/// The members are defined in py_native_cache_impl.h, which exactly one source per class includes, so that all
/// libraries of a process share the tables.
template <typename Native> class py_native_cache<Native*> : public py_native_cache_base {
public:
    using tables = script_tables<Native, PyObject>;

    static typename tables::native_to_script& get_n2py_cache();
    static typename tables::script_to_native& get_py2n_cache();
    /// While false, destruction notifies nothing. Becomes true with the first add(), and false for good when the
    /// interpreter ends.
    static bool& observers();

    /// Enters a new script object.
    static void add(Native* native, PyObject* script);
    /// Takes a dying script object out.
    static void remove(PyObject* script);
    /// Marks every script object of a dying native object invalid. Its destructor calls this first.
    static void native_destroyed(const Native* native);
};

} // namespace hdi::pyinfra
