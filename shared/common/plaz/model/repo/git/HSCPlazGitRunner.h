#pragma once

#include "plaz/base/HSCPlazReport.h"

#include <cstdint>
#include <string>
#include <vector>

/// A git command that failed for good: Msg::gitFailed.
class HSCPlazGitFailure : public HEXAll {
public:
    HSCPlazGitFailure(const ComMsgMgrInstance& message, HSCPlazReport details, bool hasMetLimit = false)
        : HEXAll(message), m_details(std::move(details)), m_hasMetLimit(hasMetLimit) {}

    /// git's own words, and what follows from them; they say more than the exception does. Empty where git said
    /// nothing, and after a cancellation.
    const HSCPlazReport& getDetails() const { return m_details; }
    /// It needed more than git is given (HSCPlazGitLimits), which says nothing of the working copy.
    bool hasMetLimit() const { return m_hasMetLimit; }

private:
    HSCPlazReport m_details;
    bool m_hasMetLimit;
};

/// What git said to a question.
struct HSCPlazGitAnswer {
    int status;              ///< exit status of git, or one of those that HUTFork has for a run without end
    std::string text;        ///< all it wrote, secrets masked
    HSCPlazReport details{}; ///< what follows from a failure, where git's words do not say all
    /// False where the file for that could not be made, which git itself does not notice.
    bool isHeard = true;

    /// git's error lines in one, or what to say where there are none.
    std::string getReason() const;
};

/// Runs git, one command at a time, and waits for it. Sends nothing. In a directory with a repository that is not this
/// user's own work (HSCPlazGitOwnership) nothing runs.
///
/// Not safe to use from several threads at once: a command changes the process's working directory and the verbosity of
/// the message service, and brings both back, also on failure.
namespace HSCPlazGitRunner {

/// Runs one command; one that fails is run once more, at once, unless it has met a limit. In a directory that holds
/// ".git" the setting http.sslVerify is false while the command runs and true afterwards.
/// @param args          one git argument each, without the program
/// @param workDir       where the command runs; must exist
/// @param internalCall  leaves http.sslVerify alone
/// @param logFile       receives the command's output; empty: a file in @p workDir that is gone afterwards
/// @return 0
/// @throws HSCPlazGitFailure when the command failed twice or was cancelled, HEXAll Msg::gitNotFound,
/// Msg::workingCopyRefused
int run(const std::vector<std::string>& args, const std::string& workDir, bool internalCall = false,
        const std::string& logFile = "");
/// The same of a command that records @p value, its last argument, in the configuration of @p dir. A user part in the
/// value ("user:token@") is left out of the command and put into the file, which only its owner can read from then on.
/// @throws HEXAll also Msg::dirNotWritable when the user part cannot be put there
int runWithValue(std::vector<std::string> args, const std::string& value, const std::string& dir, bool internalCall);
/// Records a setting of the working copy in @p dir, in the place of any before.
void configure(const std::string& dir, const std::string& key, const std::string& value);
/// Sets http.sslVerify of the working copy in @p workDir, where there is one. Nothing without git access.
void setSslVerify(const std::string& workDir, const std::string& value);

/// Runs one complete command line (see HUTFork::splitCmdLine) in git's environment and waits for its end;
/// HUTFork::interruptAll ends it. User parts of web URLs reach git through its environment.
/// @param workDir   empty: the current directory
/// @param outFile   takes standard output and standard error; replaced
/// @param exitCode  the exit status, when the result is 0; HUTFork::timedOut when it was given up
/// @param seconds   time limit; 0: none; the others are those of all commands
/// @return 0 when the process ran, -1 when the pipe for its output could not be made, -2 that for its error output (on
///         Windows; elsewhere it writes into the file itself), -4 when it could not be started, or may not be there
int runDirect(const std::string& cmdLine, const std::string& workDir, const std::string& outFile,
              std::uint32_t& exitCode, int seconds);

/// Runs a command that changes nothing, once and within the limits of all commands. What it writes stands in the
/// system's temporary directory meanwhile.
HSCPlazGitAnswer ask(const std::vector<std::string>& args, const std::string& workDir);

} // namespace HSCPlazGitRunner
