#include "support/PlatformProcess.h"

#include "Aside.h"
#include "SharedLocks.h"
#include "support/HUTWait.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <poll.h>
#include <sched.h>
#include <set>
#include <spawn.h>
#include <sstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace platform {

namespace {

using How = ProcessEnd::How;
using namespace std::chrono_literals;

// The groups of the runs under way, where a signal handler can read them.
constexpr pid_t freeSlot = 0;
constexpr pid_t reservedSlot = -1;
std::array<std::atomic<pid_t>, 64> runningGroups{};
std::atomic<bool> isInterruptWanted{false};
static_assert(std::atomic<pid_t>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

// A run's place among the running groups. Taken before the start, so that a process which is running can be found.
class GroupSlot {
public:
    GroupSlot() {
        for (auto& group : runningGroups) {
            pid_t expected = freeSlot;
            if (!group.compare_exchange_strong(expected, reservedSlot)) continue;
            m_group = &group;
            return;
        }
    }
    ~GroupSlot() { clear(); }
    GroupSlot(const GroupSlot&) = delete;
    GroupSlot& operator=(const GroupSlot&) = delete;

    explicit operator bool() const { return m_group; }
    void set(pid_t pid) { *m_group = pid; }
    void clear() {
        if (m_group) *m_group = freeSlot;
        m_group = nullptr;
    }

private:
    std::atomic<pid_t>* m_group = nullptr;
};

void killGroup(pid_t pid) {
    kill(-pid, SIGKILL);
}

class FileActions {
public:
    FileActions() { posix_spawn_file_actions_init(&m_actions); }
    ~FileActions() { posix_spawn_file_actions_destroy(&m_actions); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    posix_spawn_file_actions_t* get() { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions;
};

class Attributes {
public:
    Attributes() { posix_spawnattr_init(&m_attributes); }
    ~Attributes() { posix_spawnattr_destroy(&m_attributes); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    posix_spawnattr_t* get() { return &m_attributes; }

private:
    posix_spawnattr_t m_attributes;
};

class Descriptor {
public:
    explicit Descriptor(int fd) : m_fd(fd) {}
    ~Descriptor() {
        if (m_fd >= 0) close(m_fd);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    explicit operator bool() const { return m_fd >= 0; }
    int get() const { return m_fd; }

private:
    int m_fd;
};

// A link there is not followed, nor is a pipe waited for. Opened for appending, so that what is added at the end of the
// run does not meet what a straggler writes.
int openLog(const std::string& file) {
    constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    return file.empty() ? -1 : open(file.c_str(), flags, 0600);
}

std::vector<char*> toPointers(const std::vector<std::string>& strings) {
    std::vector<char*> pointers;
    for (const std::string& string : strings) pointers.push_back(const_cast<char*>(string.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

// Signals that the parent ignores or blocks must not stay so in the child.
void resetSignals(Attributes& attributes) {
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(attributes.get(), &none);
    posix_spawnattr_setsigdefault(attributes.get(), &all);
}

/// Descriptors of locks that children hold, too.
class SharedLocks {
public:
    void add(int handle) {
        const std::lock_guard guard(m_mutex);
        m_handles.insert(handle);
    }
    void remove(int handle) {
        const std::lock_guard guard(m_mutex);
        m_handles.erase(handle);
    }
    // In ascending order, so that none is overwritten before it has been passed on.
    std::set<int> get() {
        const std::lock_guard guard(m_mutex);
        return m_handles;
    }

private:
    std::mutex m_mutex;
    std::set<int> m_handles;
};

SharedLocks& sharedLocks() {
    static SharedLocks locks;
    return locks;
}

std::vector<pid_t> listChildren(pid_t pid) {
    const std::string id = std::to_string(pid);
    std::ifstream file("/proc/" + id + "/task/" + id + "/children");
    return {std::istream_iterator<pid_t>(file), {}};
}

// What a process starts has its limit from then on; what it has started before gets it here. Data alone counts, not the
// files that are only looked at: git sees packs of any size that way.
void limitMemory(pid_t pid, std::uint64_t bytes) {
    rlimit limit{};
    if (bytes == 0 || prlimit(pid, RLIMIT_DATA, nullptr, &limit) != 0) return;
    limit.rlim_cur = std::min<rlim_t>(limit.rlim_cur, bytes);
    limit.rlim_max = std::min<rlim_t>(limit.rlim_max, bytes);
    prlimit(pid, RLIMIT_DATA, &limit, nullptr);
    for (const pid_t child : listChildren(pid)) limitMemory(child, bytes);
}

mode_t takeFromMask(Rights rights) {
    const mode_t before = umask(0777);
    umask(before | (0777 & ~allowedTo(rights)));
    return before;
}

// Lets a child be started that gives no other rights to what it makes. It has its mask from the thread that starts it,
// and that from its process: so that is done by a thread that shares all but the mask, and nobody else notices.
void withRights(Rights rights, const std::function<void()>& startChild) {
    if (rights == Rights::byMask) return startChild();
    constexpr int allButMask = CLONE_THREAD | CLONE_SIGHAND | CLONE_FILES | CLONE_SYSVSEM;
    const auto startMasked = [&] {
        takeFromMask(rights);
        startChild();
    };
    if (workAside(allButMask, startMasked) >= 0) return;
    const mode_t before = takeFromMask(rights); // emulators know no such thread: for that moment it is everybody's mask
    startChild();
    umask(before);
}

// Returns 0 or the error number.
int start(const ProcessSpec& spec, const Descriptor& log, pid_t& pid) {
    FileActions actions;
    posix_spawn_file_actions_addopen(actions.get(), 0, "/dev/null", O_RDONLY, 0);
    if (log)
        posix_spawn_file_actions_adddup2(actions.get(), log.get(), 1);
    else
        posix_spawn_file_actions_addopen(actions.get(), 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(actions.get(), 1, 2);
    if (!spec.dir.empty()) posix_spawn_file_actions_addchdir_np(actions.get(), spec.dir.c_str());
    int next = 3;
    for (const int lock : sharedLocks().get()) posix_spawn_file_actions_adddup2(actions.get(), lock, next++);
    posix_spawn_file_actions_addclosefrom_np(actions.get(), next);

    Attributes attributes;
    posix_spawnattr_setflags(attributes.get(), POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    posix_spawnattr_setpgroup(attributes.get(), 0);
    resetSignals(attributes);

    std::vector<std::string> command{spec.program};
    command.insert(command.end(), spec.args.begin(), spec.args.end());
    const auto spawn = spec.useSearchPath ? posix_spawnp : posix_spawn;
    const std::vector<char*> words = toPointers(command);
    const std::vector<char*> variables = toPointers(spec.environment);
    int error = 0;
    withRights(spec.rights, [&] {
        error = spawn(&pid, spec.program.c_str(), actions.get(), attributes.get(), words.data(), variables.data());
    });
    return error;
}

std::string describeStartError(const ProcessSpec& spec, int error) {
    struct stat info {};
    const bool isDirGone = !spec.dir.empty() && (stat(spec.dir.c_str(), &info) != 0 || !S_ISDIR(info.st_mode));
    return isDirGone ? "there is no directory " + spec.dir : std::strerror(error);
}

bool hasEnded(pid_t pid) {
    siginfo_t info{};
    return waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT) != 0 || info.si_pid == pid;
}

void waitOnce(const Descriptor& process, std::optional<std::chrono::milliseconds> most) {
    if (process) {
        pollfd waited{process.get(), POLLIN, 0};
        const auto milliseconds = std::min<std::chrono::milliseconds::rep>(most.value_or(-1ms).count(), INT_MAX);
        poll(&waited, 1, static_cast<int>(milliseconds));
    } else { // a kernel without process descriptors
        std::this_thread::sleep_for(std::min(most.value_or(10ms), 10ms));
    }
}

// Waits without reaping, so that the process id stays ours until its slot is clear. How the run has to end before its
// time, or "exited".
How waitForEnd(pid_t pid, RunWatch& watch) {
    const Descriptor process(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)));
    while (!hasEnded(pid)) {
        if (const auto reason = watch.findReason()) return *reason;
        HUTWait::wait([&] { waitOnce(process, watch.getPause()); });
    }
    return How::exited;
}

std::uint64_t getSize(const Descriptor& file) {
    struct stat info {};
    return file && fstat(file.get(), &info) == 0 ? static_cast<std::uint64_t>(info.st_size) : 0;
}

// State and group of a process or thread, as in "12 (name) R 1 12 ..."; the name may hold anything.
std::pair<char, pid_t> readState(const std::filesystem::path& dir) {
    std::ifstream file(dir / "stat");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    std::istringstream words(text.substr(std::min(text.rfind(')'), text.size() - 1) + 1));
    char state = '?';
    pid_t parent = 0, group = 0;
    words >> state >> parent >> group;
    return {state, group};
}

std::vector<std::filesystem::path> listDirectories(const std::filesystem::path& dir) {
    std::vector<std::filesystem::path> found;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(dir, error), end; !error && entry != end; entry.increment(error))
        if (entry->path().filename().native().find_first_not_of("0123456789") == std::string::npos)
            found.push_back(entry->path());
    return found;
}

// Whether a thread of the group runs, or could if it were its turn, or waits for a disk.
bool isGroupBusy(pid_t group) {
    for (const auto& process : listDirectories("/proc")) {
        if (readState(process).second != group) continue;
        for (const auto& thread : listDirectories(process / "task")) {
            const char state = readState(thread).first;
            if (state == 'R' || state == 'D') return true;
        }
    }
    return false;
}

ProcessEnd reap(pid_t pid) {
    int status = 0;
    pid_t reaped = 0;
    do reaped = waitpid(pid, &status, 0);
    while (reaped < 0 && errno == EINTR);
    if (reaped != pid) return {How::notStarted, 0, "its exit status was taken by somebody else", 0};
    if (WIFSIGNALED(status)) return {How::exited, 128 + WTERMSIG(status), {}, 0};
    return {How::exited, WEXITSTATUS(status), {}, 0};
}

} // namespace

ProcessEnd run(const ProcessSpec& spec) {
    if (isInterrupted()) return {How::interrupted, 0, {}, 0};
    GroupSlot slot;
    if (!slot) return {How::notStarted, 0, "too many processes are running", 0};

    pid_t pid = 0;
    const Descriptor log(openLog(spec.logFile));
    RunWatch watch(spec, {[&log] { return getSize(log); }, [&pid] { return isGroupBusy(pid); }});
    if (const int error = start(spec, log, pid)) return {How::notStarted, 0, describeStartError(spec, error), 0};
    limitMemory(pid, spec.memoryLimit);
    slot.set(pid);
    // An interrupt that came before the slot was set has not met this process.
    if (isInterrupted()) killGroup(pid);

    const How how = waitForEnd(pid, watch);
    if (how != How::exited) killGroup(pid);
    slot.clear();
    ProcessEnd end = reap(pid);
    // A helper may be killed a moment before its parent, which then still exits with a status of its own.
    if (end.how == How::exited && end.status != 0 && isInterrupted()) end.how = How::interrupted;
    if (end.how == How::exited) end.how = how;
    return end;
}

void shareLock(int file) {
    sharedLocks().add(file);
}

void unshareLock(int file) {
    sharedLocks().remove(file);
}

void interruptRuns() noexcept {
    const int savedError = errno;
    isInterruptWanted = true;
    for (const auto& group : runningGroups) {
        const pid_t pid = group;
        if (pid > 0) killGroup(pid);
    }
    errno = savedError;
}

bool isInterrupted() noexcept {
    return isInterruptWanted;
}

void clearInterrupt() noexcept {
    isInterruptWanted = false;
}

} // namespace platform
