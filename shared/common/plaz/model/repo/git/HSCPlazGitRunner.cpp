#include "plaz/model/repo/git/HSCPlazGitRunner.h"

#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazStoreLayout.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/base/HSCPlazUrl.h"
#include "plaz/model/repo/git/HSCPlazGitCertificates.h"
#include "plaz/model/repo/git/HSCPlazGitConfigFile.h"
#include "plaz/model/repo/git/HSCPlazGitCredentials.h"
#include "plaz/model/repo/git/HSCPlazGitEnv.h"
#include "plaz/model/repo/git/HSCPlazGitLimits.h"
#include "plaz/model/repo/git/HSCPlazGitLog.h"
#include "plaz/model/repo/git/HSCPlazGitOutput.h"
#include "plaz/model/repo/git/HSCPlazGitOwnership.h"
#include "plaz/model/repo/git/HSCPlazGitProgram.h"
#include "plaz/model/repo/git/HSCPlazGitRemoved.h"
#include "plaz/model/repo/git/HSCPlazGitSecrets.h"
#include "plaz/model/repo/git/HSCPlazGitTrace.h"
#include "support/HIOStream.h"
#include "support/HUTFile.h"
#include "support/HUTFork.h"
#include "support/HUTSysCall.h"
#include "support/HUTText.h"

#include <boost/filesystem/operations.hpp>

#include <set>

namespace fs = boost::filesystem;

using HSCPlazGitTrace::trace;

namespace {

constexpr const char* temporaryLogName = "git_fork.log";
constexpr int notStarted = -4;
constexpr const char* execGit = "HSCPlazGit::exec_git";

/// How one command ended.
struct Run {
    int status;
    std::string commandLine; ///< secrets masked
    std::string remoteUrl;   ///< what it spoke to; empty for a command that stays local
    std::string errors;      ///< the error lines of its output, sorted and distinct, each with its end
    HSCPlazReport limit;     ///< tells which limit it met, if it did
    std::string dir;         ///< where it ran
};

/// Adds a log's error lines.
void setLastError(const std::string& log, const HSCPlazGitSecrets& secrets, std::set<std::string>& errors) {
    static constexpr const char* self = "`anonymous-namespace'::setLastError";
    HSCPlazDebugLog::inside(self, " log file : ", log);
    if (!HUTFile::exists(log)) {
        HSCPlazDebugLog::inside(self, " couldn't find log file ", log);
        return;
    }
    HSCPlazDebugLog::inside(self, " found log file ", log);
    try {
        std::string output;
        if (HIOStream::readItself(log, output) != HIOStream::Status::ok) return;
        HSCPlazDebugLog::inside(self, " opened log file ", log);
        for (const std::string& line : HSCPlazGitLog::getErrorLines(output)) {
            const std::string masked = secrets.mask(line);
            errors.insert(masked);
            HSCPlazDebugLog::inside(self, " found error : ", masked);
        }
    } catch (const std::exception& failure) {
        HSCPlazDebugLog::write(std::string("Failed to capture the errors from log - ") + failure.what());
    } catch (...) {
        HSCPlazDebugLog::write("Failed to capture the errors from log");
    }
}

// The current directory may be gone, which matters to a relative path alone.
fs::path toAbsolute(const fs::path& path, const std::string& startDir) {
    return path.is_absolute() ? path : fs::absolute(path, startDir);
}

/// Where a command's output goes: the caller's file, or one in the working directory that is gone at the end.
class CommandLog {
public:
    explicit CommandLog(const std::string& callersFile) : m_file(callersFile) {}
    ~CommandLog() { removeTemporary(); }
    CommandLog(const CommandLog&) = delete;
    CommandLog& operator=(const CommandLog&) = delete;

    const std::string& getFile() const { return m_file; }

    // Without a file, should that fail, the command runs without a log.
    void choose(const fs::path& workDir, const std::string& startDir) {
        if (!m_file.empty()) return;
        try {
            const fs::path file = toAbsolute(workDir / temporaryLogName, startDir);
            HUTFile::mkDirRecursive(file.parent_path().string());
            m_file = file.generic_string();
            m_isTemporary = true;
            HSCPlazGitOutput::clear(m_file);
            trace("Temp fork logfile:", m_file);
        } catch (const std::exception& failure) {
            trace("error: while setting up temporary log file for forked process", failure.what());
        }
    }

    void removeTemporary() const {
        if (m_isTemporary) HSCPlazGitOutput::clear(m_file);
    }

private:
    std::string m_file;
    bool m_isTemporary = false;
};

/// Silences the message service while a command runs, unless git is being debugged.
class Silence {
public:
    Silence() {
        if (!HSCPlazGitParams::isDebug()) ComMsgMgr::setVerbosity(-1);
    }
    ~Silence() { ComMsgMgr::setVerbosity(m_verbosity); }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    int m_verbosity = ComMsgMgr::getVerbosity();
};

// Without a current directory there would be no way back, so only git goes there.
void enter(const std::string& workDir, const std::string& startDir, const std::vector<std::string>& args) {
    if (startDir.empty() ? HUTFile::isDirectory(workDir) : HUTSysCall::changeDir(workDir)) return;
    // A command must never run in whatever directory happens to be the current one.
    std::string command = "git";
    for (const std::string& arg : args) command += " " + HSCPlazTrust::maskSecrets(arg);
    throw HSCPlazGitFailure(
        ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::gitFailed),
        {Msg::gitErrors, MsgSeverity::error, command, "fatal: cannot change to directory " + workDir});
}

// One retry, at once. After a cancellation, and where a limit is met, the second launch ends without running anything.
int launchTwice(HUTFork& git) {
    const Silence silence;
    const int status = git.launch(true, true, true, true);
    return status == 0 ? status : git.launch(true, true, true, true);
}

// What became of credentials that git was given and that were not enough.
void explainDenial(const Run& run, HSCPlazReport& details) {
    if (HSCPlazGitCredentials::inUrl(run.remoteUrl).isEmpty()) return;
    const HSCPlazUrl url = HSCPlazUrl::parse(run.remoteUrl);
    const bool isAsked = run.errors.find("could not read Username for") != std::string::npos;
    if (run.errors.find("Authentication failed") != std::string::npos)
        details.add(Msg::credentialsRefused, MsgSeverity::error, HSCPlazTrust::maskSecrets(url.withoutUser()));
    else if (isAsked && run.errors.find("'" + url.getServer() + "'") == std::string::npos)
        details.add(Msg::credentialsWithheld, MsgSeverity::error, HSCPlazTrust::maskSecrets(url.withoutUser()));
}

[[noreturn]] void fail(const Run& run) {
    HSCPlazReport details;
    if (!HUTFork::isInterrupted()) {
        if (!run.errors.empty()) details.add(Msg::gitErrors, MsgSeverity::error, run.commandLine, run.errors);
        details.append(HSCPlazGitCertificates::explainOnce(run.remoteUrl, run.errors, run.dir));
        explainDenial(run, details);
        details.append(run.limit);
    }
    throw HSCPlazGitFailure(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::gitFailed), details,
                            !run.limit.isEmpty());
}

bool isRemote(const std::string& command) {
    return command == "fetch" || command == "pull";
}

/// What a program that was run once spoke to (empty for nothing), and its exit status.
struct DirectRun {
    std::string remoteUrl;
    int status;
};

/// Runs a program once, for what it writes into a file. Web URLs go without their user part, which git is told through
/// its environment. The limit that it met, if it did, is told at the end of the file.
DirectRun runOnce(HUTFork& process, const std::vector<std::string>& words, const std::string& workDir,
                  const std::string& outFile, int seconds) {
    std::string remoteUrl;
    process.dontUseHDLDPath();
    process.setProg(words.front(), false);
    for (auto word = words.begin() + 1; word != words.end(); ++word) {
        const HSCPlazUrl url = HSCPlazUrl::parse(*word);
        if (url.isHttp()) remoteUrl = *word;
        process.addArg(url.isHttp() ? url.withoutUser() : *word);
    }
    process.setDir(workDir);
    const std::string startDir = HUTSysCall::getCurrDir();
    process.setLogFile(toAbsolute(outFile, startDir).generic_string());
    const std::string command = words.size() > 1 ? words[1] : "";
    const std::string dir = toAbsolute(workDir, startDir).generic_string();
    HSCPlazGitEnv::apply(process, command, dir, remoteUrl);
    HSCPlazGitLimits::apply(process, command, dir, seconds);
    const int status = process.launch(true, true, true, true);
    const HSCPlazReport limit = HSCPlazGitLimits::explain(process, command, remoteUrl, dir);
    for (const HSCPlazReport::Note& note : limit.getNotes())
        HIOStream::openForWriting(outFile, std::ios::app) << "\nfatal: " << note.message.getMessage() << std::endl;
    return {remoteUrl, status};
}

Run runHere(const std::vector<std::string>& args, const std::string& workDir, const std::string& startDir,
            CommandLog& log) {
    HUTFork git;
    git.dontUseHDLDPath();
    const std::string program = HSCPlazGitProgram::require();
    log.choose(workDir, startDir);
    git.setLogFile(log.getFile());
    HSCPlazDebugLog::inside(execGit, " gitdir : ", program);

    git.setProg(program, false);
    for (const std::string& arg : args) git.addArg(arg);
    const std::string dir = toAbsolute(workDir, startDir).generic_string();
    git.setDir(dir);
    const std::string command = args.empty() ? "" : args.front();
    Run run{0, {}, isRemote(command) ? HSCPlazGitConfigFile::getRemoteUrl(dir) : "", {}, {}, dir};
    HSCPlazGitEnv::apply(git, command, dir, run.remoteUrl);
    HSCPlazGitLimits::apply(git, command, dir, HSCPlazGitParams::getTimeOut());

    run.commandLine = HSCPlazTrust::maskSecrets(git.getCmdLineAsStr());
    trace("chgdir: ", HUTSysCall::getCurrDir());
    trace("executing: ", run.commandLine);
    HSCPlazDebugLog::inside(execGit, " executing cmd ", run.commandLine);
    run.status = launchTwice(git);
    if (run.status == 0) return run;
    trace("failed to execute: ", run.commandLine);
    std::set<std::string> errors;
    setLastError(log.getFile(), HSCPlazGitSecrets(run.remoteUrl, dir), errors);
    for (const std::string& line : errors) run.errors += line + "\n";
    run.limit = HSCPlazGitLimits::explain(git, command, run.remoteUrl, dir);
    return run;
}

// After a failure, which is the one to tell of, and after a cancellation, which lets no other command start.
void restoreSslVerify(const std::string& workDir) {
    const bool isInterrupted = HUTFork::isInterrupted();
    HUTFork::clearInterrupt();
    try {
        HSCPlazGitRunner::setSslVerify(workDir, "true");
    } catch (const HEXAll&) {
    }
    if (isInterrupted) HUTFork::interruptAll();
}

} // namespace

std::string HSCPlazGitAnswer::getReason() const {
    std::string reason;
    for (const std::string& line : HSCPlazGitLog::getErrorLines(text)) reason += (reason.empty() ? "" : "; ") + line;
    return reason.empty() ? "git ended with status " + std::to_string(status) + " and said nothing"
                          : HUTText::withoutFullStop(reason);
}

int HSCPlazGitRunner::run(const std::vector<std::string>& args, const std::string& workDir, bool internalCall,
                          const std::string& logFile) {
    HSCPlazDebugLog::inside(execGit);
    HSCPlazGitOwnership::require(workDir);
    if (!internalCall) setSslVerify(workDir, "false");
    const std::string startDir = HUTSysCall::getCurrDir();
    try {
        CommandLog log(logFile);
        enter(workDir, startDir, args);
        HSCPlazDebugLog::inside(execGit, " ", workDir, " ", startDir);
        const Run done = runHere(args, workDir, startDir, log);
        if (done.status != 0) fail(done);
        HUTSysCall::changeDir(startDir);
        trace("restore dir: ", HUTSysCall::getCurrDir());
        if (!internalCall) setSslVerify(workDir, "true");
        return done.status;
    } catch (const std::exception& failure) {
        HUTSysCall::changeDir(startDir);
        trace(failure.what());
        if (!internalCall) restoreSslVerify(workDir);
        throw;
    }
}

int HSCPlazGitRunner::runWithValue(std::vector<std::string> args, const std::string& value, const std::string& dir,
                                   bool internalCall) {
    HSCPlazUrl url = HSCPlazUrl::parse(value);
    const std::string userPart = url.user;
    if (!userPart.empty()) url.user = "***";
    args.push_back(url.toText());
    const int status = run(args, dir, internalCall);
    if (!userPart.empty() && !HSCPlazGitConfigFile::putUserPart(dir, userPart))
        throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::dirNotWritable, dir));
    return status;
}

void HSCPlazGitRunner::configure(const std::string& dir, const std::string& key, const std::string& value) {
    run({"config", "--replace-all", key, value}, dir, true);
}

void HSCPlazGitRunner::setSslVerify(const std::string& workDir, const std::string& value) {
    if (!HSCPlazGitParams::isAccessEnabled() || !HUTFile::isDirectory(workDir + "/" + HSCPlazStoreLayout::gitDir))
        return;
    configure(workDir, "http.sslVerify", value);
    HSCPlazDebugLog::write("set ssl verify " + value);
}

int HSCPlazGitRunner::runDirect(const std::string& cmdLine, const std::string& workDir, const std::string& outFile,
                                std::uint32_t& exitCode, int seconds) {
    const std::vector<std::string> words = HUTFork::splitCmdLine(cmdLine);
    if (words.empty() || !HSCPlazGitOwnership::findObjection(workDir).empty()) return notStarted;
    HUTFork process;
    process.usePipes();
    exitCode = static_cast<std::uint32_t>(runOnce(process, words, workDir, outFile, seconds).status);
    if (process.wasStarted()) return 0;
    return process.getFailedPipe() != 0 ? -process.getFailedPipe() : notStarted;
}

HSCPlazGitAnswer HSCPlazGitRunner::ask(const std::vector<std::string>& args, const std::string& workDir) {
    std::vector<std::string> words;
    try {
        HSCPlazGitOwnership::require(workDir);
        words.push_back(HSCPlazGitProgram::require());
    } catch (const HEXAll& failure) {
        return {HUTFork::notStarted, std::string("fatal: ") + failure.what()};
    }
    words.insert(words.end(), args.begin(), args.end());
    const HSCPlazGitRemoved outFile(HUTFile::getTemporaryName(".log"));
    HUTFork process;
    const std::string log = HUTFile::makeNew(outFile.getName()) ? outFile.getName() : "";
    const DirectRun done = runOnce(process, words, workDir, log, HSCPlazGitParams::getTimeOut());
    HSCPlazGitAnswer answer{done.status, {}};
    answer.isHeard = HIOStream::read(outFile.getName(), answer.text) == HIOStream::Status::ok;
    answer.text = HSCPlazGitSecrets(done.remoteUrl, workDir).mask(answer.text);
    if (answer.status != 0) answer.details = HSCPlazGitCertificates::explain(done.remoteUrl, answer.text, workDir);
    return answer;
}
