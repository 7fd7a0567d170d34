#pragma once

#include "support/HostExport.h"

#include <functional>
#include <string>

struct Tcl_Interp;

namespace hdi::tcltasks {

/// The host's Tcl: one interpreter per process, made at the first use and used by that thread alone.
class HOST_API task_manager {
public:
    /// The interpreter. It lives until the process ends.
    /// @throws HEXAll HostMsg::tclUnavailable when Tcl cannot be started, such as without its script library
    static Tcl_Interp* get_interp();

    /// Evaluates a command at the global level, as if it were typed.
    ///
    /// @param command  a complete Tcl script
    /// @param result   receives the result as text, which may be any then; null wants an integer
    /// @param quiet    keeps the command from the receiver of set_echo()
    /// @return the result as an integer; 0 for an empty one, and for one that is none where any is taken
    /// @throws HEXAll HostMsg::tclFailed with Tcl's error text, as above too
    static int eval_in_tcl_throw(const std::string& command, std::string* result, bool quiet);

    /// Receives each command that is evaluated, before it is; empty for nobody.
    static void set_echo(std::function<void(const std::string& command)> echo);

    /// True from the moment when Tcl begins to end.
    static bool is_exiting();
};

} // namespace hdi::tcltasks
