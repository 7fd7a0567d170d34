#include "TclShell.h"

#include "Interrupt.h"
#include "MessageLog.h"
#include "Options.h"
#include "ProgressLine.h"
#include "Secrets.h"
#include "ShellMsg.h"
#include "TclCommands.h"
#include "TclCompletion.h"
#include "TclText.h"

#include "scripting/task_manager.h"
#include "scripting/tcl_text.h"
#include "support/HUTEnv.h"
#include "support/HUTFork.h"
#include "support/HUTSysCall.h"
#include "support/HUTText.h"

#include <algorithm>
#include <cerrno>
#include <iostream>
#include <tcl.h>

namespace {

Tcl_AsyncHandler interrupted = nullptr;

void markInterrupted() {
    Tcl_AsyncMark(interrupted);
}

std::string resultOf(Tcl_Interp* interp) {
    return hdi::tcltasks::text_of(Tcl_GetObjResult(interp));
}

/// Where and why the last command failed.
std::string traceOf(Tcl_Interp* interp) {
    const TclRef options(Tcl_GetReturnOptions(interp, TCL_ERROR));
    const TclRef name(makeText("-errorinfo"));
    Tcl_Obj* trace = nullptr;
    Tcl_DictObjGet(nullptr, options.get(), name.get(), &trace);
    return trace ? hdi::tcltasks::text_of(trace) : std::string();
}

/// Scripts may have closed it.
void flushOutput() {
    if (Tcl_Channel output = Tcl_GetStdChannel(TCL_STDOUT)) Tcl_Flush(output);
}

void setVariable(Tcl_Interp* interp, const char* name, Tcl_Obj* value) {
    Tcl_SetVar2Ex(interp, name, nullptr, value, TCL_GLOBAL_ONLY);
}

void setArguments(Tcl_Interp* interp, const std::vector<std::string>& words) {
    const bool isScript = !words.empty();
    const std::vector<std::string> arguments(words.begin() + (isScript ? 1 : 0), words.end());
    setVariable(interp, "argv0", makeText(isScript ? words.front() : "plaz"));
    setVariable(interp, "argc", Tcl_NewIntObj(static_cast<int>(arguments.size())));
    setVariable(interp, "argv", makeList(arguments));
}

/// Standard input as scripts see it, so that commands and what they read come from one stream.
class PlainLines : public LineInput {
public:
    explicit PlainLines(bool isTerminal) : m_isTerminal(isTerminal) {}

    Outcome read(const std::string& prompt, std::string& line) override {
        if (m_isTerminal) std::cout << prompt << std::flush;
        line.clear();
        Tcl_Channel input = Tcl_GetStdChannel(TCL_STDIN);
        if (!input) return Outcome::end; // a command has closed it
        Tcl_DString text;
        Tcl_DStringInit(&text);
        const int count = Tcl_Gets(input, &text);
        const bool isInterrupted = count < 0 && Tcl_GetErrno() == EINTR && !Tcl_Eof(input);
        line.assign(Tcl_DStringValue(&text), static_cast<std::size_t>(Tcl_DStringLength(&text)));
        Tcl_DStringFree(&text);
        if (isInterrupted) return Outcome::dropped;
        return count < 0 ? Outcome::end : Outcome::line;
    }
    void remember(const std::string& /*command*/) override {}

private:
    bool m_isTerminal;
};

std::unique_ptr<LineInput> makeInput([[maybe_unused]] Tcl_Interp* interp, bool isTerminal) {
#ifdef PLAZ_LINE_EDITOR
    if (isTerminal)
        return makeLineEditor([interp](const std::string& before) { return completeTcl(interp, before); },
                              HUTEnv::getHDIAppDataDir() + "/plaz_shell_history");
#endif
    return std::make_unique<PlainLines>(isTerminal);
}

/// Reads lines until they make a command. @return what ended the last of them
LineInput::Outcome readCommand(LineInput& input, std::string& command) {
    command.clear();
    std::string line;
    do {
        const LineInput::Outcome outcome = input.read(command.empty() ? "plaz% " : "> ", line);
        if (outcome != LineInput::Outcome::line) return outcome;
        command += line + '\n';
    } while (!Tcl_CommandComplete(command.c_str()));
    return LineInput::Outcome::line;
}

} // namespace

TclShell::TclShell(HDGUIStatus& status, MessageLog& log, ProgressLine& progress)
    : m_status(status), m_log(log), m_progress(progress), m_interp(hdi::tcltasks::task_manager::get_interp()) {
    Tcl_SetSystemEncoding(m_interp, "utf-8"); // that of catalogs, whatever the locale
    registerPlazCommands(m_interp, m_status);
    interrupted = Tcl_AsyncCreate(cancelEvaluation, this);
    Interrupt::cancelOnCtrlC(m_status, markInterrupted);
}

int TclShell::run(const std::vector<std::string>& words) {
    const bool isInteractive = words.empty() && HUTSysCall::isInputTerminal();
    setArguments(m_interp, words);
    setVariable(m_interp, "tcl_interactive", Tcl_NewIntObj(isInteractive ? 1 : 0));
    int status = exitStatus::done;
    if (!words.empty()) {
        status = runScript(words.front());
    } else {
        const auto input = makeInput(m_interp, isInteractive);
        status = isInteractive ? runPrompt(*input) : runInput(*input);
    }
    Interrupt::cancelOnCtrlC(m_status);
    Tcl_Finalize(); // writes out what is still to be written
    return status;
}

/// RATIONALE: no script can catch that it has used up its commands, so that this ends a loop that catches all errors;
/// Tcl's own cancellation would end all later commands too.
int TclShell::cancelEvaluation(void* shell, Tcl_Interp* /*interp*/, int code) {
    const auto& self = *static_cast<TclShell*>(shell);
    if (!self.m_status.isCanceled()) return code; // what was to be cancelled has ended by itself
    Tcl_LimitSetCommands(self.m_interp, 0);
    Tcl_LimitTypeSet(self.m_interp, TCL_LIMIT_COMMANDS);
    return Tcl_LimitCheck(self.m_interp);
}

int TclShell::runScript(const std::string& file) {
    const std::size_t before = m_log.startCommand();
    const TclRef path(makeText(file));
    const bool isDone = Tcl_FSEvalFileEx(m_interp, path.get(), "utf-8") == TCL_OK && !m_status.isCanceled();
    if (!isDone) showError(before, true);
    return isDone ? exitStatus::done : exitStatus::failed;
}

int TclShell::runInput(LineInput& input) {
    std::string command;
    for (;;) {
        const std::size_t before = m_log.startCommand();
        const LineInput::Outcome outcome = readCommand(input, command);
        // The end may have come in the middle of a command: Tcl says what is missing.
        if (!evaluate(command)) {
            showError(before, true);
            return exitStatus::failed;
        }
        if (outcome == LineInput::Outcome::end) return exitStatus::done;
    }
}

int TclShell::runPrompt(LineInput& input) {
    std::string command;
    for (;;) {
        const LineInput::Outcome outcome = readCommand(input, command);
        if (outcome == LineInput::Outcome::end) return exitStatus::done;
        recover(); // from what came while the line was typed
        if (outcome == LineInput::Outcome::dropped || command.find_first_not_of(" \t\n") == std::string::npos) continue;
        if (!mayHoldSecret(command)) input.remember(command.substr(0, command.size() - 1));
        const std::size_t before = m_log.startCommand();
        if (evaluate(command))
            showResult();
        else
            showError(before, false);
        recover();
    }
}

bool TclShell::evaluate(const std::string& command) {
    const int code = Tcl_EvalEx(m_interp, command.data(), static_cast<int>(command.size()), TCL_EVAL_GLOBAL);
    return code == TCL_OK && !m_status.isCanceled();
}

void TclShell::showError(std::size_t messagesBefore, bool withTrace) {
    m_progress.erase();
    flushOutput();
    if (m_status.isCanceled()) return;
    const std::string error = resultOf(m_interp);
    std::string shown = withTrace ? traceOf(m_interp) : error;
    if (shown.compare(0, error.size(), error) != 0) shown.insert(0, error + '\n'); // a script has made the trace
    const auto& messages = m_log.getMessages();
    const auto told = std::find_if(
        messages.begin() + static_cast<std::ptrdiff_t>(messagesBefore), messages.end(),
        [&](const ComMsgMgr::Message& message) { return (error + ' ').rfind(message.text + ' ', 0) == 0; });
    if (told != messages.end()) shown.erase(0, std::min(told->text.size() + 1, error.size())); // there may be more
    shown = shownTrace(shown);
    shown.erase(0, shown.find_first_not_of('\n'));
    if (!shown.empty()) std::cerr << HUTText::printable(shown, true) << std::endl;
}

void TclShell::showResult() {
    m_progress.erase();
    flushOutput();
    const std::string result = resultOf(m_interp);
    if (!result.empty()) std::cout << HUTText::printable(result, true) << std::endl;
}

void TclShell::recover() {
    if (!m_status.isCanceled()) return;
    ComMsgMgr::send(ShellMsg::cancelled, MsgSeverity::error);
    m_status.setState(HDGUIStatus::running);
    Tcl_LimitSetCommands(m_interp, 0); // forgets that there were too many
    Tcl_LimitTypeReset(m_interp, TCL_LIMIT_COMMANDS);
    HUTFork::clearInterrupt();
    Interrupt::cancelOnCtrlC(m_status, markInterrupted);
}
