#include "plaz/HSCPlazUtils.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/repo/HSCPlazGit.h"
#include "plaz/model/repo/git/HSCPlazGitCredentials.h"
#include "plaz/model/repo/git/HSCPlazGitEnv.h"
#include "plaz/model/repo/git/HSCPlazGitLog.h"
#include "plaz/model/repo/git/HSCPlazGitRemoved.h"
#include "plaz/model/repo/git/HSCPlazGitSilence.h"
#include "support/HIOStream.h"
#include "support/HPAParamMgr.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"
#include "support/HUTFork.h"
#include "support/HUTSysCall.h"

#include <boost/filesystem.hpp>

#include <iostream>
#include <set>

namespace fs = boost::filesystem;

namespace {

constexpr const char* gitRelativePath = "win64/git-2.45.0/cmd/git.exe";
constexpr const char* temporaryLogName = "git_fork.log";
constexpr int notStarted = -4;
constexpr const char* execGit = "HSCPlazGit::exec_git";

// The error lines of the last command that failed, sorted and distinct.
std::set<std::string>& capturedErrors() {
    static std::set<std::string> errors;
    return errors;
}

// Whether git's own words on the last failure have been sent. The captured errors do not tell: the commands that follow
// a failure empty them.
bool failureIsTold = false;

// Adds a log's error lines to the captured errors.
void setLastError(const std::string& log) {
    static constexpr const char* self = "`anonymous-namespace'::setLastError";
    HSCPlazLogger::inside(self, " log file : ", log);
    if (!HUTFile::exists(log)) {
        HSCPlazLogger::inside(self, " couldn't find log file ", log);
        return;
    }
    HSCPlazLogger::inside(self, " found log file ", log);
    try {
        std::string output;
        if (HIOStream::read(log, output) != HIOStream::Status::ok) return;
        HSCPlazLogger::inside(self, " opened log file ", log);
        for (const std::string& line : HSCPlazGitLog::getErrorLines(output)) {
            const std::string masked = HSCPlazTrust::maskSecrets(line);
            capturedErrors().insert(masked);
            HSCPlazLogger::inside(self, " found error : ", masked);
        }
    } catch (const std::exception& failure) {
        HSCPlazLogger::log(std::string("Failed to capture the errors from log - ") + failure.what());
    } catch (...) {
        HSCPlazLogger::log("Failed to capture the errors from log");
    }
}

std::string joinCapturedErrors() {
    std::string text;
    for (const std::string& line : capturedErrors()) text += line + "\n";
    return text;
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
            HSCPlazGit::debugTrace("Temp fork logfile:", m_file);
        } catch (const std::exception& failure) {
            HSCPlazGit::debugTrace("error: while setting up temporary log file for forked process", failure.what());
        }
    }

    void removeTemporary() const {
        if (m_isTemporary && HUTFile::isRegularFile(m_file)) HUTFile::rmRecursive(m_file);
    }

private:
    std::string m_file;
    bool m_isTemporary = false;
};

// Without a current directory there would be no way back, so only git goes there.
void enter(const std::string& workDir, const std::string& startDir, const std::vector<std::string>& args) {
    if (startDir.empty() ? HUTFile::isDirectory(workDir) : HUTSysCall::changeDir(workDir)) return;
    // A command must never run in whatever directory happens to be the current one.
    std::string command = "git";
    for (const std::string& arg : args) command += " " + HSCPlazTrust::maskSecrets(arg);
    ComMsgMgr::send(Msg::gitErrors, MsgSeverity::error, command, "fatal: cannot change to directory " + workDir);
    failureIsTold = true;
    throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::gitFailed));
}

// One retry, at once. After a cancellation the second launch ends without running anything.
int launchTwice(HUTFork& git) {
    const int status = git.launch(true, true, true, true);
    return status == 0 ? status : git.launch(true, true, true, true);
}

// What became of credentials that git was given and that were not enough.
void explainDenial(const std::string& errors, const std::string& remoteUrl) {
    const std::string shown = HSCPlazGitUrl::withoutUserPart(remoteUrl);
    const bool isAsked = errors.find("could not read Username for") != std::string::npos;
    if (errors.find("Authentication failed") != std::string::npos)
        ComMsgMgr::send(Msg::credentialsRefused, MsgSeverity::error, shown);
    else if (isAsked && errors.find("'" + HSCPlazGitUrl::getServer(remoteUrl) + "'") == std::string::npos)
        ComMsgMgr::send(Msg::credentialsWithheld, MsgSeverity::error, shown);
}

[[noreturn]] void reportFailure(const std::string& commandLine, const std::string& remoteUrl, const CommandLog& log,
                                int verbosity) {
    HSCPlazGit::debugTrace("failed to execute: ", commandLine);
    setLastError(log.getFile());
    log.removeTemporary();
    const std::string errors = joinCapturedErrors();
    if (!errors.empty() && !HUTFork::isInterrupted()) {
        ComMsgMgr::setVerbosity(verbosity);
        ComMsgMgr::send(Msg::gitErrors, MsgSeverity::error, commandLine, errors);
        if (!HSCPlazGitCredentials::inUrl(remoteUrl).isEmpty()) explainDenial(errors, remoteUrl);
        failureIsTold = true;
    }
    throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::gitFailed));
}

bool isRemote(const std::string& command) {
    return command == "fetch" || command == "pull";
}

/// Makes a direct run ready. Web URLs go without their user part, which git is told through its environment.
void prepare(HUTFork& process, const std::vector<std::string>& words, const std::string& workDir,
             const std::string& outFile) {
    std::string remoteUrl;
    process.dontUseHDLDPath();
    process.setProg(words.front(), false);
    for (auto word = words.begin() + 1; word != words.end(); ++word) {
        if (HSCPlazGitUrl::isHttp(*word)) remoteUrl = *word;
        process.addArg(HSCPlazGitUrl::isHttp(*word) ? HSCPlazGitUrl::withoutUserPart(*word) : *word);
    }
    process.setDir(workDir);
    const std::string startDir = HUTSysCall::getCurrDir();
    process.setLogFile(toAbsolute(outFile, startDir).generic_string());
    HSCPlazGitEnv::apply(process, words.size() > 1 ? words[1] : "", toAbsolute(workDir, startDir).generic_string(),
                         remoteUrl);
}

int runGit(const std::vector<std::string>& args, const std::string& workDir, const std::string& startDir,
           CommandLog& log, int verbosity) {
    HUTFork git;
    git.dontUseHDLDPath();
    const std::string program = HSCPlazGit::getGitExePath();
    if (program.empty()) throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::gitNotFound));
    log.choose(workDir, startDir);
    git.setLogFile(log.getFile());
    HSCPlazLogger::inside(execGit, " gitdir : ", program);

    git.setProg(program, false);
    for (const std::string& arg : args) git.addArg(arg);
    git.setTimeout(HSCPlazGit::getGitTimeOut());
    const std::string dir = toAbsolute(workDir, startDir).generic_string();
    git.setDir(dir);
    const std::string command = args.empty() ? "" : args.front();
    const std::string remoteUrl = isRemote(command) ? HSCPlazGit::getRemoteUrl(dir) : "";
    HSCPlazGitEnv::apply(git, command, dir, remoteUrl);

    capturedErrors().clear();
    const std::string commandLine = HSCPlazTrust::maskSecrets(git.getCmdLineAsStr());
    HSCPlazGit::debugTrace("chgdir: ", HUTSysCall::getCurrDir());
    HSCPlazGit::debugTrace("executing: ", commandLine);
    HSCPlazLogger::inside(execGit, " executing cmd ", commandLine);
    if (!HSCPlazGit::isDebugGit()) ComMsgMgr::setVerbosity(-1);
    const int status = launchTwice(git);
    if (status != 0) reportFailure(commandLine, remoteUrl, log, verbosity);
    return status;
}

} // namespace

int HSCPlazGit::exec_git(const std::vector<std::string>& args, const std::string& workDir, bool internalCall,
                         const std::string& logFile) {
    HSCPlazLogger::inside(execGit);
    if (!internalCall) {
        failureIsTold = false;
        setSslVerify(workDir, "false");
    }
    const std::string startDir = HUTSysCall::getCurrDir();
    const int verbosity = ComMsgMgr::getVerbosity();
    CommandLog log(logFile);
    try {
        enter(workDir, startDir, args);
        HSCPlazLogger::inside(execGit, " ", workDir, " ", startDir);
        const int status = runGit(args, workDir, startDir, log, verbosity);
        HUTSysCall::changeDir(startDir);
        debugTrace("restore dir: ", HUTSysCall::getCurrDir());
        if (!internalCall && isGitAccessEnabled()) setSslVerify(workDir, "true");
        ComMsgMgr::setVerbosity(verbosity);
        return status;
    } catch (const std::exception& failure) {
        HUTSysCall::changeDir(startDir);
        debugTrace(failure.what());
        ComMsgMgr::setVerbosity(verbosity);
        if (!internalCall && isGitAccessEnabled()) restoreSslVerify(workDir);
        throw;
    }
}

int HSCPlazGit::exec_git_win(const std::string& cmdLine, const std::string& workDir, const std::string& outFile,
                             std::uint32_t& exitCode, int seconds) {
    const std::vector<std::string> words = HUTFork::splitCmdLine(cmdLine);
    if (words.empty()) return notStarted;
    HUTFork process;
    prepare(process, words, workDir, outFile);
    process.usePipes();
    process.setTimeout(seconds);
    exitCode = static_cast<std::uint32_t>(process.launch(true, true, true, true));
    if (process.wasStarted()) return 0;
    return process.getFailedPipe() != 0 ? -process.getFailedPipe() : notStarted;
}

HSCPlazGit::Answer HSCPlazGit::ask(const std::vector<std::string>& args, const std::string& workDir) {
    std::vector<std::string> words{getGitExePath()};
    words.insert(words.end(), args.begin(), args.end());
    const std::string outFile =
        (fs::temp_directory_path() / fs::unique_path("plaz-%%%%-%%%%-%%%%.log")).generic_string();
    const HSCPlazGitRemoved removed(outFile);
    HUTFork process;
    prepare(process, words, workDir, outFile);
    process.setTimeout(getGitTimeOut());
    Answer answer{process.launch(true, true, true, true), {}};
    HIOStream::read(outFile, answer.text);
    answer.text = HSCPlazTrust::maskSecrets(answer.text);
    return answer;
}

std::string HSCPlazGit::Answer::getReason() const {
    std::string reason;
    for (const std::string& line : HSCPlazGitLog::getErrorLines(text)) reason += (reason.empty() ? "" : "; ") + line;
    return reason.empty() ? "git ended with status " + std::to_string(status) + " and said nothing" : reason;
}

void HSCPlazGit::configure(const std::string& dir, const std::string& key, const std::string& value) {
    exec_git({"config", "--replace-all", key, value}, dir, true, "");
}

// After a failure, which is the one to tell of, and after a cancellation, which lets no other command start.
void HSCPlazGit::restoreSslVerify(const std::string& workDir) {
    const bool isInterrupted = HUTFork::isInterrupted();
    HUTFork::clearInterrupt();
    const HSCPlazGitSilence silence;
    try {
        setSslVerify(workDir, "true");
    } catch (const HEXAll&) {
    }
    if (isInterrupted) HUTFork::interruptAll();
}

void HSCPlazGit::setSslVerify(const std::string& workDir, const std::string& value) {
    if (!HUTFile::isDirectory(workDir + "/.git")) return;
    configure(workDir, "http.sslVerify", value);
    HSCPlazLogger::log("set ssl verify " + value);
}

bool HSCPlazGit::hasToldFailure() {
    return failureIsTold;
}

std::string HSCPlazGit::getGitExePath() {
    const std::string relative = "/../../Solvan/" + HUTEnv::getProductMajorMinorVersion() + "/tps/" + gitRelativePath;
    std::string path;
    if (HSCPlazUtils::isProduct("solvan")) {
        path = HUTEnv::getGDATpsPath(gitRelativePath);
    } else {
        path = HUTEnv::getGDAAppRoot(relative);
        if (path.empty())
            path = (fs::path(HUTEnv::getEnv("HOMEDRIVE") + "/cygwin") / HUTEnv::getEnv("GDA_DEVKIT") / gitRelativePath)
                       .generic_string();
    }
    debugTrace("get exec path:", path);
    debugTrace("get gitdir path:", path);
    path = HUTFile::getCanonicalName(path);
    debugTrace("Git path : ", path);
    return path;
}

int HSCPlazGit::getGitTimeOut() {
    return HPAParamMgr::getParamMgr().getValueIfExistAsInt("plaz.gitTimeOut", 100);
}

bool HSCPlazGit::isDebugGit() {
    return HPAParamMgr::getParamMgr().getValueIfExistAsBool("plaz.enableDebugGit", false) ||
           HUTEnv::isYes("PLAZ_SHOW_LOG");
}

bool HSCPlazGit::isGitAccessEnabled() {
    return HPAParamMgr::getParamMgr().getValueIfExistAsBool("plaz.enableGitAccess", true);
}

bool HSCPlazGit::hasRemoteAccess() {
    if (HPAParamMgr::getParamMgr().getValueAsBool("plaz.enableRemoteAccess")) return true;
    ComMsgMgr::send(Msg::remoteAccessOff, MsgSeverity::error);
    return false;
}

void HSCPlazGit::writeTrace(const std::string& line) {
    const std::string masked = HSCPlazTrust::maskSecrets(line);
    std::cout << masked << std::endl;
    HSCPlazLogger::log(masked);
}
