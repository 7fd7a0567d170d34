#include "Failure.h"
#include "HubParams.h"
#include "Secrets.h"
#include "ShellMsg.h"
#include "TclCall.h"
#include "TclText.h"

#include "support/HPAParamMgr.h"

namespace {

HPAParamMgr& params() {
    return HPAParamMgr::getParamMgr();
}

/// RATIONALE: several words are one value, joined by single blanks, and none is the empty text: user interfaces put
/// values into the command as they are.
Tcl_Obj* setParam(const TclCall& call) {
    const std::size_t count = call.getWords().size();
    call.expectWords(1, count);
    const HPAParam& param = requireParam(cutName(textOf(call.getWords().front())));
    if (!params().setValue(param.getName(), call.joinWords(1, count)))
        failWith(ShellMsg::paramRefused, param.getName());
    return Tcl_NewIntObj(1);
}

Tcl_Obj* getParam(const TclCall& call) {
    call.expectWords(1, 1);
    return makeText(shownValue(requireParam(cutName(textOf(call.getWords().front())))));
}

Tcl_Obj* resetParam(const TclCall& call) {
    call.expectWords(1, 1);
    params().resetValue(requireParam(cutName(textOf(call.getWords().front()))).getName());
    return Tcl_NewIntObj(1);
}

std::vector<const HPAParam*> select(const TclCall& call) {
    call.expectWords(0, 1);
    return findParams(call.joinWords(0, call.getWords().size()), call.has(commandOptions::hidden));
}

Tcl_Obj* listParam(const TclCall& call) {
    std::vector<std::string> names;
    for (const HPAParam* param : select(call)) names.push_back(param->getName());
    return makeList(names);
}

Tcl_Obj* reportParam(const TclCall& call) {
    return makeText(tabulate(select(call)).toText());
}

} // namespace

const std::vector<TclCommand>& paramCommands() {
    static const std::vector<TclCommand> commands{
        {"set_param", "name ?value ...?", "Sets a parameter until the program ends. Several words are one value.",
         tclOptions({}), TclSubject::params, true, setParam},
        {"get_param", "name", "The value of a parameter; user ids and tokens read \"***\".", tclOptions({}),
         TclSubject::params, false, getParam},
        {"list_param", "?pattern?", "The names of the parameters.", tclOptions({commandOptions::hidden}),
         TclSubject::params, false, listParam},
        {"reset_param", "name", "Brings a parameter's default back.", tclOptions({}), TclSubject::params, false,
         resetParam},
        {"report_param", "?pattern?", "A table of the parameters with value, default and description.",
         tclOptions({commandOptions::hidden}), TclSubject::params, false, reportParam},
    };
    return commands;
}
