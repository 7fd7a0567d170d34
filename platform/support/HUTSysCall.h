#pragma once

#include "support/HostExport.h"

#include <string>
#include <vector>

/// The process's working directory and standard streams.
class HOST_API HUTSysCall {
public:
    /// Absolute; empty when the directory is gone.
    static std::string getCurrDir();
    /// @return false, with nothing changed, when @p dir cannot be entered
    static bool changeDir(const std::string& dir);

    /// For main(): from now on the output streams carry bytes as they are, and a terminal takes them as UTF-8; a file
    /// that may not grow further is an error, and no longer the end of the process.
    /// @return the arguments in UTF-8, the program's name first
    static std::vector<std::string> startProgram(int argc, const char* const* argv);
    /// Has the system's command interpreter carry out a line. Words from elsewhere have no place in it unless they are
    /// plain. @return 0 when the command was done with success
    static int runShell(const std::string& command);
    /// Whether the command interpreter takes the text for one word, just as it is.
    static bool isPlainShellWord(const std::string& text);

    /// Sends what the process and its children write to standard output to standard error from now on.
    /// @return a handle of the real standard output for restoreStandardOutput(); negative, with nothing changed, when
    ///         that failed
    static int divertStandardOutput();
    /// Brings the real standard output back and ends @p kept.
    static void restoreStandardOutput(int kept);
    /// Columns of the terminal that standard error is; 0 when it is none.
    static int getTerminalWidth();
    enum class Stream { output, errors };
    /// Whether a stream is a terminal that takes escape sequences for colours; it does from then on.
    static bool showsColours(Stream stream);
    /// Whether a person may be typing on standard input.
    static bool isInputTerminal();
    /// Lets a Ctrl-C that the process handles end a read that waits for input. Holds until the handler is set again.
    static void letCtrlCEndReads();
};
