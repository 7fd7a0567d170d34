#include "support/HUTFork.h"

#include "support/HIOStream.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"
#include "support/PlatformFile.h"
#include "support/PlatformProcess.h"
#include "support/PlatformSystem.h"
#include "support/PlatformUserArea.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <utility>

namespace {

using How = platform::ProcessEnd::How;

/// Status of a program that somebody else has killed, as a system that is short of memory does.
constexpr int killed = 128 + 9;

bool isPlain(const std::string& word) {
    return !word.empty() && std::all_of(word.begin(), word.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               std::string_view("_-+=.,:/@%^~").find(c) != std::string_view::npos;
    });
}

// Control characters are spelled out, so that an argument cannot pass for another line of a log.
std::string quote(const std::string& word) {
    if (isPlain(word)) return word;
    std::string quoted = "'";
    for (const char c : word) {
        const auto code = static_cast<unsigned char>(c);
        char spelled[] = "\\x00";
        std::snprintf(spelled + 2, sizeof spelled - 2, "%02x", code);
        if (code < 0x20 || code == 0x7f)
            quoted += spelled;
        else
            quoted += c == '\'' ? "'\\''" : std::string(1, c);
    }
    return quoted + "'";
}

std::string nameOf(const std::string& variable) {
    return variable.substr(0, variable.find('=', 1));
}

// Begins a line of its own whatever the child wrote last.
void appendToLog(const std::string& file, const std::string& reason) {
    if (!file.empty()) HIOStream::openForWriting(file, std::ios::app) << "\nfatal: " << reason << std::endl;
}

std::size_t findProgramEnd(const std::string& line) {
    const std::size_t firstBlank = line.find(' ');
    if (line.empty() || line.front() == '"') return 0;
    for (std::size_t end = firstBlank; end != std::string::npos; end = line.find(' ', end + 1))
        if (HUTFile::isRegularFile(line.substr(0, end))) return end;
    return std::min(firstBlank, line.size());
}

std::uint64_t toBytes(int megabytes) {
    return megabytes > 0 ? static_cast<std::uint64_t>(megabytes) << 20 : 0;
}

} // namespace

void HUTFork::dontUseHDLDPath() {
    unsetEnv("LD_LIBRARY_PATH");
}

void HUTFork::setLogFile(const std::string& file) {
    m_logFile = file;
}

void HUTFork::setProg(const std::string& path, bool useSearchPath) {
    m_prog = path;
    m_useSearchPath = useSearchPath;
}

void HUTFork::addArg(const std::string& arg) {
    m_args.push_back(arg);
}

void HUTFork::setTimeout(int seconds) {
    m_timeoutSeconds = seconds;
    m_limitMet = Limit::none;
}

void HUTFork::setMemoryLimit(int megabytes, std::function<bool(const std::string& output)> tellsOfMemory) {
    m_memoryMegabytes = megabytes;
    m_tellsOfMemory = std::move(tellsOfMemory);
}

void HUTFork::setLogLimit(int megabytes) {
    m_logMegabytes = megabytes;
}

void HUTFork::setWatch(std::function<Watch()> makeWatch) {
    m_makeWatch = std::move(makeWatch);
}

void HUTFork::setDir(const std::string& dir) {
    m_dir = dir;
}

void HUTFork::setEnv(const std::string& name, const std::string& value) {
    m_env[platform::getVariableKey(name)] = name + "=" + value;
}

void HUTFork::unsetEnv(const std::string& name) {
    m_env[platform::getVariableKey(name)].clear();
}

void HUTFork::usePipes() {
    m_throughPipes = true;
}

std::vector<std::string> HUTFork::splitCmdLine(const std::string& line) {
    std::vector<std::string> words;
    const std::size_t programEnd = findProgramEnd(line);
    if (programEnd > 0) words.push_back(line.substr(0, programEnd));
    bool isInWord = false;
    bool isQuoted = false;
    for (std::size_t i = programEnd; i < line.size(); ++i) {
        if (line[i] == ' ' && !isQuoted) {
            isInWord = false;
            continue;
        }
        if (!isInWord) words.emplace_back();
        isInWord = true;
        if (line[i] == '"')
            isQuoted = !isQuoted;
        else
            words.back() += line[i];
    }
    return words;
}

std::string HUTFork::getCmdLineAsStr() const {
    std::string line = quote(m_prog);
    for (const std::string& arg : m_args) line += " " + quote(arg);
    return line;
}

bool HUTFork::hasRunOutOfMemory(int status) const {
    if (m_memoryMegabytes <= 0 || status == 0) return false;
    std::string output;
    HIOStream::read(m_logFile, output);
    return status == killed || m_tellsOfMemory(output);
}

int HUTFork::launch(bool wait, bool log, bool kill, bool quiet) {
    if (m_limitMet != Limit::none) return m_status;
    platform::ProcessSpec spec;
    spec.program = m_prog;
    spec.useSearchPath = m_useSearchPath;
    spec.args = m_args;
    spec.dir = m_dir;
    spec.rights = platform::rightsOf(m_dir.empty() ? HUTEnv::getPWD() : m_dir);
    spec.logFile = m_logFile;
    if (m_timeoutSeconds > 0) spec.timeout = std::chrono::seconds(m_timeoutSeconds);
    spec.memoryLimit = toBytes(m_memoryMegabytes);
    spec.logLimit = toBytes(m_logMegabytes);
    if (m_makeWatch) spec.mayGoOn = m_makeWatch();
    spec.throughPipes = m_throughPipes;
    for (const std::string& variable : HUTEnv::getAll())
        if (m_env.count(platform::getVariableKey(nameOf(variable))) == 0) spec.environment.push_back(variable);
    for (const auto& [key, variable] : m_env)
        if (!variable.empty()) spec.environment.push_back(variable);

    platform::ProcessEnd end{How::notStarted, 0, {}, 0};
    if (!(wait && log && kill && quiet))
        end.reason = "only blocking runs that log and can be killed are served";
    else if (platform::holdsNull(m_prog) || std::any_of(m_args.begin(), m_args.end(), platform::holdsNull))
        end.reason = "an argument holds a null character";
    else
        end = platform::run(spec);

    m_wasStarted = end.how != How::notStarted;
    m_failedPipe = end.failedPipe;

    const auto stop = [this](Limit limit, int status, const std::string& reason) {
        appendToLog(m_logFile, m_prog + " was stopped " + reason);
        m_limitMet = limit;
        return m_status = status;
    };
    switch (end.how) {
    case How::exited:
        if (hasRunOutOfMemory(end.status)) m_limitMet = Limit::memory;
        return m_status = end.status;
    case How::interrupted:
        return interrupted;
    case How::timedOut:
        return stop(Limit::time, timedOut, "after " + std::to_string(m_timeoutSeconds) + " seconds");
    case How::logFull:
        return stop(Limit::log, limitMet, "after it had written " + std::to_string(m_logMegabytes) + " MB of text");
    case How::heldUp:
        return stop(Limit::watch, limitMet, "because it did not get on");
    case How::notStarted:
        break;
    }
    appendToLog(m_logFile, "cannot start " + m_prog + ": " + end.reason);
    return notStarted;
}

void HUTFork::interruptAll() noexcept {
    platform::interruptRuns();
}

bool HUTFork::isInterrupted() noexcept {
    return platform::isInterrupted();
}

void HUTFork::clearInterrupt() noexcept {
    platform::clearInterrupt();
}
