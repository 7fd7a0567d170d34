#pragma once

#include <optional>
#include <string>

/// What differs by system in what tests prepare.
namespace test_system {

/// The variable that names the user's home directory.
extern const char* const homeVariable;
extern const char* const pathListSeparator;
/// Below which temporary directories are made, as everybody calls it.
std::string findTempDirectory();
/// What the file name of a program ends in.
extern const char* const programSuffix;
/// Makes a symbolic link. @return false where that cannot be done
bool makeLink(const std::string& target, const std::string& link);
/// Makes another user the owner of a file or directory, itself alone. @return false where that cannot be done
bool giveAway(const std::string& path);
/// Lets everybody write to a file or directory. @return false where that cannot be done
bool openToAll(const std::string& path);
/// Whether others than the owner may read the file.
bool isReadableByOthers(const std::string& file);
/// Sets a variable of this process, or takes it away.
void putVariable(const std::string& name, const std::optional<std::string>& value);

/// Starts a program, with this one's streams, that nobody waits for.
void startAside(const std::string& program, const char* argument);

/// The name of a file or directory as scripts of the shell know it.
std::string toShellName(const std::string& path);
/// Makes a program that is a script of the shell. What @p script says of the directory @p dir is meant as a shell knows
/// it.
void writeProgram(const std::string& file, const std::string& script, const std::string& dir);

} // namespace test_system
