#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

/// What the portable sources of the host need from the system beside files and processes.
namespace platform {

/// Separates the directories of a list such as PATH.
extern const char pathListSeparator;
/// What the files of programs end in.
extern const std::string programEnding;

/// Absolute name of the file from which this library was loaded, links resolved; empty when it is unknown.
const std::string& getLibraryFile();
/// The user's home directory; empty when there is none.
std::string getHomeDir();

/// Every variable of the environment as "NAME=value".
std::vector<std::string> getEnvironment();
/// The variable's value; none when it is not set.
std::optional<std::string> getVariable(const std::string& name);
/// Equal for two names that mean one variable.
std::string getVariableKey(const std::string& name);
/// Sets a variable for this process and its children.
void setEnvironment(const std::string& name, const std::string& value);

/// As HUTEnv::getAuthorities() says.
std::string getAuthorities();

/// As HUTSysCall::startProgram() says.
std::vector<std::string> startProgram(int argc, const char* const* argv);
/// As HUTSysCall::runShell() says.
int runShell(const std::string& command);
/// What the shell takes as it is beside letters, digits and what is plain on every system.
extern const std::string plainInShell;

/// Makes standard output a second name of standard error. @return a descriptor of the real one, not inherited by
/// children; negative when that failed
int divertStandardOutput();
/// Makes @p kept standard output again and closes it.
void restoreStandardOutput(int kept);
/// Columns of the terminal that standard error is; 0 when it is none.
int getTerminalWidth();
/// Whether standard input is a terminal.
bool isInputTerminal();
/// Whether standard error, or output, is a terminal that takes escape sequences from now on.
bool showsColours(bool isErrors);
/// Does @p work, which may put a handler of broken pipes of its own in place when it is done for the first time. Where
/// the program handles them itself, as virtual machines do, the work is done twice, and the program's handler stays in
/// force all the time. Nothing must be thrown.
void keepBrokenPipeHandler(const std::function<void()>& work);
/// As HUTSysCall::letCtrlCEndReads() says.
void letCtrlCEndReads();

} // namespace platform
