#include "support/PlatformProcess.h"

#include "ChildOutput.h"
#include "Win32.h"
#include "support/HUTFile.h"
#include "support/HUTWait.h"
#include "support/PlatformFile.h"
#include "support/PlatformSystem.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <sstream>
#include <thread>
#include <utility>

namespace platform {

namespace {

using How = ProcessEnd::How;
using win32::Handle;
using win32::toWide;

std::atomic<bool> isInterruptWanted{false};

/// The process trees of the runs under way.
class RunningJobs {
public:
    void add(HANDLE job) {
        const std::lock_guard guard(m_mutex);
        m_jobs.insert(job);
    }
    void remove(HANDLE job) {
        const std::lock_guard guard(m_mutex);
        m_jobs.erase(job);
    }
    void killAll() {
        const std::lock_guard guard(m_mutex);
        for (const HANDLE job : m_jobs) TerminateJobObject(job, 1);
    }

private:
    std::mutex m_mutex;
    std::set<HANDLE> m_jobs;
};

RunningJobs& runningJobs() {
    static RunningJobs jobs;
    return jobs;
}

/// A process with all that it starts. What is left of it ends with this process if that is killed.
class Job {
public:
    /// @param memoryLimit  bytes that each of them may have; 0: no limit
    explicit Job(std::uint64_t memoryLimit) : m_job(CreateJobObjectW(nullptr, nullptr)), m_memoryLimit(memoryLimit) {
        limit(JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE);
        runningJobs().add(m_job.get());
    }
    /// Only a time-out or an interrupt kills: what a program leaves running goes on.
    ~Job() {
        runningJobs().remove(m_job.get());
        limit(0);
    }
    Job(const Job&) = delete;
    Job& operator=(const Job&) = delete;

    HANDLE get() const { return m_job.get(); }
    /// Waits a moment for the last of them, whose open files would be in the way of whatever comes next.
    void kill() {
        TerminateJobObject(m_job.get(), 1);
        for (int tries = 0; tries < 200 && !isEmpty(); ++tries) Sleep(5);
    }

    /// Whether they have computed for a tenth of the time since the last question. How long one waits for a disk is not
    /// to be had.
    bool isBusy() {
        JOBOBJECT_BASIC_ACCOUNTING_INFORMATION info{};
        if (!QueryInformationJobObject(m_job.get(), JobObjectBasicAccountingInformation, &info, sizeof info, nullptr))
            return true;
        const Moment last =
            std::exchange(m_asked, {GetTickCount64(), info.TotalUserTime.QuadPart + info.TotalKernelTime.QuadPart});
        constexpr LONGLONG unitsInMillisecond = 10000;
        const auto passed = static_cast<LONGLONG>(m_asked.milliseconds - last.milliseconds);
        return (m_asked.computed - last.computed) * 10 > passed * unitsInMillisecond;
    }

private:
    struct Moment {
        ULONGLONG milliseconds;
        LONGLONG computed;
    };

    void limit(DWORD flags) {
        JOBOBJECT_EXTENDED_LIMIT_INFORMATION info{};
        info.BasicLimitInformation.LimitFlags = flags | (m_memoryLimit > 0 ? JOB_OBJECT_LIMIT_PROCESS_MEMORY : 0);
        info.ProcessMemoryLimit = static_cast<SIZE_T>(m_memoryLimit);
        SetInformationJobObject(m_job.get(), JobObjectExtendedLimitInformation, &info, sizeof info);
    }
    bool isEmpty() const {
        JOBOBJECT_BASIC_ACCOUNTING_INFORMATION info{};
        return !QueryInformationJobObject(m_job.get(), JobObjectBasicAccountingInformation, &info, sizeof info,
                                          nullptr) ||
               info.ActiveProcesses == 0;
    }

    Handle m_job;
    std::uint64_t m_memoryLimit;
    Moment m_asked{GetTickCount64(), 0};
};

/// What a child has from its first moment on: the handles that are named, and no others that happen to be open; the
/// job.
class Inheritance {
public:
    Inheritance(std::vector<HANDLE> handles, HANDLE job) : m_handles(std::move(handles)), m_job(job) {
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 2, 0, &size);
        m_memory.resize(size);
        m_isMade =
            InitializeProcThreadAttributeList(get(), 2, 0, &size) &&
            UpdateProcThreadAttribute(get(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, m_handles.data(),
                                      m_handles.size() * sizeof(HANDLE), nullptr, nullptr) &&
            UpdateProcThreadAttribute(get(), 0, PROC_THREAD_ATTRIBUTE_JOB_LIST, &m_job, sizeof m_job, nullptr, nullptr);
    }
    ~Inheritance() { DeleteProcThreadAttributeList(get()); }
    Inheritance(const Inheritance&) = delete;
    Inheritance& operator=(const Inheritance&) = delete;

    explicit operator bool() const { return m_isMade; }
    LPPROC_THREAD_ATTRIBUTE_LIST get() { return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(m_memory.data()); }

private:
    std::vector<HANDLE> m_handles;
    HANDLE m_job;
    std::vector<char> m_memory;
    bool m_isMade = false;
};

// Programs take their line apart by these rules: backslashes are plain except before a quote.
void appendQuoted(std::wstring& line, const std::wstring& word) {
    if (!word.empty() && word.find_first_of(L" \t\n\v\"") == std::wstring::npos) {
        line += word;
        return;
    }
    line += L'"';
    std::size_t backslashes = 0;
    for (const wchar_t c : word) {
        if (c == L'"') line.append(backslashes + 1, L'\\');
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        line += c;
    }
    line.append(backslashes, L'\\');
    line += L'"';
}

std::wstring toCommandLine(const std::wstring& program, const std::vector<std::string>& args) {
    std::wstring line = L'"' + program + L'"'; // quoted always, so that no beginning of it is tried
    for (const std::string& arg : args) {
        line += L' ';
        appendQuoted(line, toWide(arg));
    }
    return line;
}

/// Names of variables are taken without regard to case.
struct IsBefore {
    bool operator()(const std::wstring& a, const std::wstring& b) const {
        return CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(), static_cast<int>(b.size()), TRUE) ==
               CSTR_LESS_THAN;
    }
};

std::wstring toEnvironmentBlock(const std::vector<std::string>& environment) {
    std::map<std::wstring, std::wstring, IsBefore> variables;
    for (const std::string& variable : environment) {
        const std::wstring wide = toWide(variable);
        const std::size_t end = std::min(wide.find(L'=', 1), wide.size());
        variables.insert_or_assign(wide.substr(0, end), wide.substr(end));
    }
    std::wstring block;
    for (const auto& [name, value] : variables) block += name + value + L'\0';
    return block.empty() ? std::wstring(2, L'\0') : block + L'\0';
}

std::wstring searchAlongPath(const std::wstring& program) {
    std::istringstream dirs(getVariable("PATH").value_or(""));
    std::wstring found(32767, L'\0');
    for (std::string dir; std::getline(dirs, dir, pathListSeparator);) {
        const DWORD size = dir.empty() ? 0
                                       : SearchPathW(toWide(dir).c_str(), program.c_str(), L".exe",
                                                     static_cast<DWORD>(found.size()), found.data(), nullptr);
        if (size != 0) return found.substr(0, size);
    }
    return {};
}

// RATIONALE: the system gets the whole name, for it would look for any other in the current directory, too, and a
// store's working copy may hold anything.
std::wstring findProgram(const ProcessSpec& spec) {
    if (spec.useSearchPath && spec.program.find_first_of("/\\") == std::string::npos)
        return searchAlongPath(toWide(spec.program));
    const std::filesystem::path program = std::filesystem::path(toWide(spec.dir)) / toWide(spec.program);
    return std::filesystem::path(toWide(makeAbsolute(win32::toUtf8(program.native())))).make_preferred();
}

// The command interpreter would run it, and take parts of arguments for commands of its own.
bool isCommandFile(const std::wstring& program) {
    const std::wstring type = std::filesystem::path(win32::toLongName(win32::toUtf8(program))).extension();
    return _wcsicmp(type.c_str(), L".cmd") == 0 || _wcsicmp(type.c_str(), L".bat") == 0;
}

std::string describeStartError(const ProcessSpec& spec, DWORD error) {
    if (!spec.dir.empty() && !HUTFile::isDirectory(spec.dir)) return "there is no directory " + spec.dir;
    return error == ERROR_NOT_SUPPORTED ? "it is a command file, a program is needed" : win32::describe(error);
}

/// @return 0 or the error
DWORD start(const ProcessSpec& spec, const Job& job, const ChildOutput& output, Handle& process) {
    const std::wstring program = findProgram(spec);
    if (program.empty()) return ERROR_FILE_NOT_FOUND;
    if (isCommandFile(program)) return ERROR_NOT_SUPPORTED;
    const Handle input = openNull(GENERIC_READ);
    std::vector<HANDLE> handles{input.get(), output.getOut()};
    if (output.getErr() != output.getOut()) handles.push_back(output.getErr());
    Inheritance inheritance(handles, job.get());
    if (!inheritance) return GetLastError();

    STARTUPINFOEXW startup{};
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    startup.StartupInfo.hStdInput = input.get();
    startup.StartupInfo.hStdOutput = output.getOut();
    startup.StartupInfo.hStdError = output.getErr();
    startup.lpAttributeList = inheritance.get();

    std::wstring line = toCommandLine(program, spec.args);
    std::wstring block = toEnvironmentBlock(spec.environment);
    const std::wstring dir = toWide(spec.dir);
    constexpr DWORD flags = CREATE_NO_WINDOW | CREATE_UNICODE_ENVIRONMENT | EXTENDED_STARTUPINFO_PRESENT;
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, flags, block.data(),
                        dir.empty() ? nullptr : dir.c_str(), &startup.StartupInfo, &started))
        return GetLastError();
    process = Handle(started.hProcess);
    CloseHandle(started.hThread);
    return 0;
}

/// How the run has to end before the event comes, or "exited".
How waitFor(const Handle& event, RunWatch& watch) {
    for (;;) {
        const auto pause = watch.getPause();
        const auto most = static_cast<DWORD>(pause ? std::min<LONGLONG>(pause->count(), INFINITE - 1) : INFINITE);
        DWORD result = WAIT_FAILED;
        HUTWait::wait([&] { result = WaitForSingleObject(event.get(), most); });
        if (result != WAIT_TIMEOUT) return How::exited;
        if (const auto reason = watch.findReason()) return *reason;
    }
}

ProcessEnd waitAndJudge(const Handle& process, RunWatch& watch, Job& job, ChildOutput& output) {
    // An interrupt that came before the process was there has not met it.
    if (isInterrupted()) job.kill();
    How how = waitFor(process, watch);
    if (how == How::exited) how = waitFor(output.getClosed(), watch);
    if (how != How::exited) {
        job.kill();
        WaitForSingleObject(process.get(), INFINITE);
    }
    output.finish();
    DWORD status = 0;
    if (!GetExitCodeProcess(process.get(), &status)) status = static_cast<DWORD>(-1);
    ProcessEnd end{how, static_cast<int>(status), {}, 0};
    if (end.status != 0 && isInterrupted()) end.how = How::interrupted;
    return end;
}

} // namespace

ProcessEnd run(const ProcessSpec& spec) {
    if (isInterrupted()) return {How::interrupted, 0, {}, 0};
    ChildOutput output(spec.logFile, spec.throughPipes);
    if (output.getFailedPipe() != 0)
        return {How::notStarted, 0, "a pipe for its output could not be made", output.getFailedPipe()};

    Job job(spec.memoryLimit);
    RunWatch watch(spec, {[&output] { return output.getSize(); }, [&job] { return job.isBusy(); }});
    Handle process;
    const DWORD error = start(spec, job, output, process);
    if (error != 0) return {How::notStarted, 0, describeStartError(spec, error), 0};
    output.begin();
    return waitAndJudge(process, watch, job, output);
}

// The system calls handlers of Ctrl-C on a thread of their own, so that they may wait for a lock.
void interruptRuns() noexcept {
    isInterruptWanted = true;
    runningJobs().killAll();
}

bool isInterrupted() noexcept {
    return isInterruptWanted;
}

void clearInterrupt() noexcept {
    isInterruptWanted = false;
}

} // namespace platform
