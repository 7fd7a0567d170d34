#pragma once

#include "LineInput.h"

#include "support/HDGUIStatus.h"

#include <cstddef>
#include <string>
#include <vector>

class MessageLog;
class ProgressLine;
struct Tcl_Interp;

/// Runs Tcl with the hub's commands: a script, what standard input says, or what a person types.
class TclShell {
public:
    /// All arguments must outlive the object, @p status the process.
    /// @param log       knows which errors have been shown already
    /// @param progress  erased before anything is printed
    TclShell(HDGUIStatus& status, MessageLog& log, ProgressLine& progress);

    /// Ends Tcl afterwards; a script's "exit" ends the process.
    /// @param words  the script's file and its arguments; without one commands are read
    /// @return the exit status
    int run(const std::vector<std::string>& words);

private:
    /// Ends whatever runs. Called by Tcl, at a safe place, after a Ctrl-C.
    static int cancelEvaluation(void* shell, Tcl_Interp* interp, int code);
    int runScript(const std::string& file);
    /// Runs commands as a script does: the first that fails is the last.
    int runInput(LineInput& input);
    int runPrompt(LineInput& input);
    bool evaluate(const std::string& command);
    /// Shows why the last command failed, unless it was cancelled. @param withTrace  and where
    void showError(std::size_t messagesBefore, bool withTrace);
    void showResult();
    /// Makes ready for the next command after a cancellation.
    void recover();

    HDGUIStatus& m_status;
    MessageLog& m_log;
    ProgressLine& m_progress;
    Tcl_Interp* m_interp;
};
