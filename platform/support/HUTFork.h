#pragma once

#include "support/HostExport.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

/// Starts a child process and waits for it: an argument list, never a shell.
///
/// The child gets a process group of its own, standard input from the null device and, when a log file is set,
/// standard output and standard error in that file. It is started without copying the parent's address space.
/// When the time-out passes, another limit is met or interruptAll() is called, the whole process group is killed.
class HOST_API HUTFork {
public:
    /// Status that launch() returns for a program that could not be started; the reason is in the log as "fatal: ...".
    static constexpr int notStarted = 127;
    /// Status of a run that was killed because its time-out passed; the log says so as "fatal: ...".
    static constexpr int timedOut = 124;
    /// Status of a run that was killed because its log became too long or its watch ended it; the log says so likewise.
    static constexpr int limitMet = 123;
    /// Status of a run ended, or not begun, because of interruptAll().
    static constexpr int interrupted = 130;

    /// Leaves the host's own library search path (LD_LIBRARY_PATH) out of the child's environment.
    void dontUseHDLDPath();
    /// File for the child's output, truncated at each launch; a new one is readable by its owner alone. Empty, or one
    /// that cannot be opened: the output goes to the null device.
    void setLogFile(const std::string& file);
    /// @param path            the program; a relative path counts from the directory in which the child starts
    /// @param useSearchPath   true looks a bare name up along PATH
    void setProg(const std::string& path, bool useSearchPath);
    void addArg(const std::string& arg);
    /// Seconds until the run is killed; 0 or less waits without limit. Gives a launcher that has met a limit a new
    /// start.
    void setTimeout(int seconds);

    enum class Limit { none, time, memory, log, watch };

    /// Megabytes of memory that each process of the run may have; 0 or less: no limit. What asks for more is refused
    /// it.
    /// @param tellsOfMemory  whether a failed program's output says that this is why it failed; that it was killed from
    ///                       outside says so by itself
    void setMemoryLimit(int megabytes, std::function<bool(const std::string& output)> tellsOfMemory);
    /// Megabytes to which the log may grow before the run is killed; 0 or less: no limit. It may come to be somewhat
    /// longer, since it is looked at ten times a second.
    void setLogLimit(int megabytes);
    /// Asked about once a second while a run lasts, on the thread that waits; false kills the run. @p isBusy tells
    /// whether a process of the run computes or, where systems tell that, waits for its disk; it is not for free.
    using Watch = std::function<bool(const std::function<bool()>& isBusy)>;
    /// @param makeWatch  called as each launch begins, for the watch over it
    void setWatch(std::function<Watch()> makeWatch);
    /// Directory in which the child starts; empty keeps the parent's.
    void setDir(const std::string& dir);
    /// Sets a variable in the child's environment only.
    void setEnv(const std::string& name, const std::string& value);
    /// Keeps a variable of the parent from the child.
    void unsetEnv(const std::string& name);
    /// On Windows, lets the child's output come through a pipe for each of the two streams, from which a thread copies
    /// it into the log until the pipe is closed; what still holds one belongs to the run. Elsewhere the child writes to
    /// the log itself, as it does without this.
    void usePipes();

    /// Splits one complete command line into the program and its arguments, without a shell: blanks separate, double
    /// quotes keep blanks together, and nothing escapes. A program without quotes may hold blanks all the same: the
    /// shortest beginning of the line that ends before a blank and is a file is the program.
    /// @return empty for a line that holds nothing
    static std::vector<std::string> splitCmdLine(const std::string& line);

    /// Program and arguments as one line, quoted where needed, for logs and messages.
    std::string getCmdLineAsStr() const;

    /// Runs the program and waits for its end. May be called again with the same settings; where a limit has been met,
    /// further calls give the same status at once, run nothing and leave the log as it is.
    /// @param wait,log,kill,quiet  the host's launch flags; a blocking run that logs and can be killed has all four
    /// set,
    ///                             and no other combination is served here
    /// @return the exit status; 128 + n for a child that signal n ended; or one of the constants above
    int launch(bool wait, bool log, bool kill, bool quiet);

    /// The limit that a launch has met since the time-out was set.
    Limit getLimitMet() const { return m_limitMet; }

    /// Whether the last launch started the program. Tells a program that was not started from one that ended with the
    /// status `notStarted`.
    bool wasStarted() const { return m_wasStarted; }

    /// Of a launch that did not start the program: 1 or 2 when that pipe could not be made, else 0.
    int getFailedPipe() const { return m_failedPipe; }

    /// Kills the running child, if any, and lets later launches return `interrupted` at once.
    /// May be called from a signal handler and from another thread.
    static void interruptAll() noexcept;
    static bool isInterrupted() noexcept;
    /// Allows launches again.
    static void clearInterrupt() noexcept;

private:
    bool hasRunOutOfMemory(int status) const;

    std::string m_logFile;
    std::string m_prog;
    std::string m_dir;
    std::vector<std::string> m_args;
    /// "NAME=value" by the key of the name, for the variables that the child does not have from the parent; empty for
    /// those that it does not have.
    std::map<std::string, std::string> m_env;
    std::function<bool(const std::string&)> m_tellsOfMemory;
    std::function<Watch()> m_makeWatch;
    int m_timeoutSeconds = 0;
    int m_memoryMegabytes = 0;
    int m_logMegabytes = 0;
    int m_status = 0; ///< of the last launch
    Limit m_limitMet = Limit::none;
    int m_failedPipe = 0;
    bool m_useSearchPath = false;
    bool m_throughPipes = false;
    bool m_wasStarted = false;
};
