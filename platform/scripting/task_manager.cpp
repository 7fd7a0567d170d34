#include "scripting/task_manager.h"

#include "scripting/tcl_text.h"
#include "support/HostMsg.h"
#include "support/PlatformSystem.h"

#include <tcl.h>

#include <atomic>
#include <utility>

namespace hdi::tcltasks {

namespace {

std::atomic<bool> has_begun_to_exit{false};

std::function<void(const std::string&)>& echo_receiver() {
    static std::function<void(const std::string&)> receiver;
    return receiver;
}

[[noreturn]] void fail(const MsgId<1>& id, const std::string& text) {
    throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", id, text));
}

Tcl_Interp* make_interp() {
    platform::keepBrokenPipeHandler([] { Tcl_FindExecutable(nullptr); }); // the program's first step into Tcl
    Tcl_Interp* interp = Tcl_CreateInterp();
    if (Tcl_Init(interp) != TCL_OK) {
        const std::string reason = text_of(Tcl_GetObjResult(interp));
        Tcl_DeleteInterp(interp);
        fail(HostMsg::tclUnavailable, reason);
    }
    Tcl_CreateExitHandler([](ClientData) { has_begun_to_exit = true; }, nullptr);
    return interp;
}

} // namespace

Tcl_Interp* task_manager::get_interp() {
    static Tcl_Interp* const interp = make_interp();
    return interp;
}

int task_manager::eval_in_tcl_throw(const std::string& command, std::string* result, bool quiet) {
    Tcl_Interp* interp = get_interp();
    if (!quiet && echo_receiver()) echo_receiver()(command);
    const int code = Tcl_EvalEx(interp, command.data(), static_cast<int>(command.size()), TCL_EVAL_GLOBAL);
    Tcl_Obj* value = Tcl_GetObjResult(interp);
    std::string text = text_of(value);
    int number = 0;
    bool is_done = code == TCL_OK;
    if (is_done && !text.empty() && Tcl_GetIntFromObj(result ? nullptr : interp, value, &number) != TCL_OK && !result) {
        is_done = false;
        text = text_of(Tcl_GetObjResult(interp));
    }
    Tcl_ResetResult(interp);
    if (!is_done) fail(HostMsg::tclFailed, text);
    if (result) *result = std::move(text);
    return number;
}

void task_manager::set_echo(std::function<void(const std::string&)> echo) {
    echo_receiver() = std::move(echo);
}

bool task_manager::is_exiting() {
    return has_begun_to_exit;
}

} // namespace hdi::tcltasks
