// Runs a program and brings in one fault, just before the N-th call by which it or a child would change a file.
//
//   stepper [--at N] [--do FAULT] [--kind write|open] [--children|--alone] [--refuse CALL=ERROR]
//           [--report FILE] -- PROGRAM ARG...
//
//   --at N       where the fault comes in, counted from 1
//   --do FAULT   kill       the program alone is killed; its children live on, as they do where people kill it
//                kill-all   the program and all that it has started are killed
//                interrupt  the program's process group gets SIGINT, as by Ctrl-C
//                ENOSPC, EIO, EACCES, EMFILE, EROFS  the call fails with that error
//                full       from then on every call that needs room on the disk fails with ENOSPC
//   --kind open  count each opening of a file or directory instead, also for reading
//   --children   count the calls of all processes (default); --alone: those of the program itself
//   --refuse C=E beside the fault, every call C (flock, fsync, renameat2) of all processes fails with the error E, such
//                as ENOSYS; with "pretend" for E it does nothing and succeeds. It does not count then
//   --report F   a line for each call that was counted, up to the fault's; so N lines say that it came in
//
// Calls on pipes, sockets, devices and /proc do not count, nor do those that change nothing because what they name is
// not there, or is there already. The end comes when the last process has ended, with the program's exit status, or
// with 128 and the number of the signal that ended it.

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// What a call works on, and so when it counts.
enum class Works {
    descriptor, ///< on an open file
    onOld,      ///< on a path where something is
    onNew,      ///< on a path where nothing is yet
    opening     ///< on a path, and flags say whether it may change what is there
};

constexpr int none = -1;

struct Call {
    long number;
    const char* name;
    Works works;
    int directory;     ///< which argument is the directory that a path begins at, or the open file
    int path;          ///< which argument is the path
    int second = none; ///< which argument is the flags of an opening, or the new path of a renaming
};

constexpr long openat2 = 437, fchmodat2 = 452; // younger than some systems' headers

constexpr std::array calls{
    Call{SYS_open, "open", Works::opening, none, 0, 1},
    Call{SYS_creat, "creat", Works::opening, none, 0},
    Call{SYS_openat, "openat", Works::opening, 0, 1, 2},
    Call{openat2, "openat2", Works::opening, 0, 1, 2},
    Call{SYS_write, "write", Works::descriptor, 0, none},
    Call{SYS_pwrite64, "pwrite", Works::descriptor, 0, none},
    Call{SYS_writev, "writev", Works::descriptor, 0, none},
    Call{SYS_pwritev, "pwritev", Works::descriptor, 0, none},
    Call{SYS_pwritev2, "pwritev2", Works::descriptor, 0, none},
    Call{SYS_sendfile, "sendfile", Works::descriptor, 0, none},
    Call{SYS_copy_file_range, "copy_file_range", Works::descriptor, 2, none},
    Call{SYS_ftruncate, "ftruncate", Works::descriptor, 0, none},
    Call{SYS_fallocate, "fallocate", Works::descriptor, 0, none},
    Call{SYS_fsync, "fsync", Works::descriptor, 0, none},
    Call{SYS_syncfs, "syncfs", Works::descriptor, 0, none},
    Call{SYS_fdatasync, "fdatasync", Works::descriptor, 0, none},
    Call{SYS_fchmod, "fchmod", Works::descriptor, 0, none},
    Call{SYS_truncate, "truncate", Works::onOld, none, 0},
    Call{SYS_rename, "rename", Works::onOld, none, 0, 1},
    Call{SYS_renameat, "renameat", Works::onOld, 0, 1, 3},
    Call{SYS_renameat2, "renameat2", Works::onOld, 0, 1, 3},
    Call{SYS_unlink, "unlink", Works::onOld, none, 0},
    Call{SYS_unlinkat, "unlinkat", Works::onOld, 0, 1},
    Call{SYS_rmdir, "rmdir", Works::onOld, none, 0},
    Call{SYS_chmod, "chmod", Works::onOld, none, 0},
    Call{SYS_fchmodat, "fchmodat", Works::onOld, 0, 1},
    Call{fchmodat2, "fchmodat2", Works::onOld, 0, 1},
    Call{SYS_utimensat, "utimensat", Works::onOld, 0, 1},
    Call{SYS_link, "link", Works::onNew, none, 1},
    Call{SYS_linkat, "linkat", Works::onNew, 2, 3},
    Call{SYS_mkdir, "mkdir", Works::onNew, none, 0},
    Call{SYS_mkdirat, "mkdirat", Works::onNew, 0, 1},
    Call{SYS_symlink, "symlink", Works::onNew, none, 1},
    Call{SYS_symlinkat, "symlinkat", Works::onNew, 1, 2},
};

const std::map<std::string, int> errors{{"ENOSPC", ENOSPC}, {"EIO", EIO},     {"EACCES", EACCES},
                                        {"EMFILE", EMFILE}, {"EROFS", EROFS}, {"full", ENOSPC}};

/// What needs room on a disk although its file is there.
const std::set<long> growing{SYS_write,    SYS_pwrite64, SYS_writev,          SYS_pwritev,
                             SYS_pwritev2, SYS_sendfile, SYS_copy_file_range, SYS_fallocate};

/// What there are disks without, and how these say so.
const std::map<std::string, unsigned> refusable{
    {"flock", SYS_flock}, {"fsync", SYS_fsync}, {"renameat2", SYS_renameat2}};
const std::map<std::string, unsigned> refusals{{"ENOSYS", ENOSYS}, {"EINVAL", EINVAL}, {"ENOTSUP", ENOTSUP},
                                               {"ENOLCK", ENOLCK}, {"EIO", EIO},       {"pretend", 0}};

const std::set<std::string> ends{"kill", "kill-all", "interrupt"};

struct Options {
    bool withChildren, openings;
    long at;
    std::string fault, report;
    std::vector<sock_filter> refusal; ///< empty where nothing is refused
    char** command;
};

std::vector<sock_filter> toFilter(const std::string& refused) {
    if (refused.empty()) return {};
    const std::size_t middle = refused.find('=');
    const unsigned call = refusable.at(refused.substr(0, middle)), error = refusals.at(refused.substr(middle + 1));
    return {BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1), BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error)};
}

Options readOptions(char** args) {
    const std::set<std::string> flags{"--children", "--alone"};
    std::map<std::string, std::string> values{
        {"--at", "0"}, {"--do", "kill"}, {"--kind", "write"}, {"--refuse", ""}, {"--report", "/dev/null"}};
    while (*++args != nullptr && std::string(*args) != "--") {
        const std::string option = *args;
        if (values.count(option) + flags.count(option) == 0) throw std::invalid_argument("no such option: " + option);
        if (flags.count(option) == 0 && *++args == nullptr) break;
        values[option] = *args;
    }
    if (*args == nullptr || args[1] == nullptr) throw std::invalid_argument("there is no program to run");
    const std::string fault = values["--do"];
    if (ends.count(fault) + errors.count(fault) == 0) throw std::invalid_argument("no such fault: " + fault);
    return {values.count("--alone") == 0,
            values["--kind"] == "open",
            std::stol(values["--at"]),
            fault,
            values["--report"],
            toFilter(values["--refuse"]),
            args + 1};
}

/// A call at which a process is held.
struct Held {
    pid_t task;
    user_regs_struct registers{};

    explicit Held(pid_t held) : task(held) { ptrace(PTRACE_GETREGS, task, nullptr, &registers); }

    unsigned long long get(int argument) const {
        const std::array places{registers.rdi, registers.rsi, registers.rdx, registers.r10};
        return places.at(static_cast<std::size_t>(argument));
    }

    /// Reads what an argument points to, as far as the memory goes there.
    void read(int argument, void* to, std::streamsize size) const {
        std::ifstream memory(getFolder() + "/mem");
        memory.seekg(static_cast<std::streamoff>(get(argument)));
        memory.read(static_cast<char*>(to), size);
    }

    std::string readText(int argument) const {
        std::string text(PATH_MAX, '\0');
        read(argument, text.data(), PATH_MAX);
        return text.substr(0, text.find('\0'));
    }

    std::string getFolder() const { return "/proc/" + std::to_string(task); }

    void fail(int error) {
        registers.orig_rax = static_cast<unsigned long long>(-1);
        registers.rax = static_cast<unsigned long long>(-error);
        ptrace(PTRACE_SETREGS, task, nullptr, &registers);
    }
};

/// A file as a process names it.
struct File {
    std::string link; ///< in /proc, where the process's directories and open files lie; empty for an absolute path
    std::string path; ///< from there; empty for an open file

    std::string getName() const {
        std::array<char, PATH_MAX> target{};
        const ssize_t size = link.empty() ? 0 : readlink(link.c_str(), target.data(), target.size());
        return std::string(target.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0))) + path;
    }

    mode_t getMode() const { // 0 where nothing is
        struct stat found {};
        const std::string place = link + path;
        const int failure = path.empty() ? stat(place.c_str(), &found) : lstat(place.c_str(), &found);
        return failure != 0 ? 0 : found.st_mode;
    }
};

File findFile(const Held& held, const Call& call) {
    const int descriptor = call.directory == none ? AT_FDCWD : static_cast<int>(held.get(call.directory));
    const std::string link = held.getFolder() + (descriptor == AT_FDCWD ? "/cwd" : "/fd/" + std::to_string(descriptor));
    if (call.path == none || held.get(call.path) == 0) return {link, ""};
    const std::string path = held.readText(call.path);
    return path.rfind('/', 0) == 0 ? File{"", path} : File{link, "/" + path};
}

bool mayChange(const Held& held, const Call& call) {
    if (call.number == SYS_creat) return true;
    std::uint64_t flags = held.get(call.second);
    if (call.number == openat2) held.read(call.second, &flags, sizeof flags);
    return (flags & (O_WRONLY | O_RDWR | O_CREAT | O_TRUNC)) != 0;
}

bool counts(const Held& held, const Call& call, const File& file, bool countsOpenings) {
    if (countsOpenings && call.works != Works::opening) return false;
    if (file.getName().rfind("/proc/", 0) == 0) return false;
    const mode_t mode = file.getMode();
    const bool isOld = mode != 0, isFile = S_ISREG(mode) || S_ISDIR(mode);
    if (call.works == Works::onOld) return isOld;
    if (call.works == Works::onNew) return !isOld;
    if (call.works == Works::descriptor) return isFile;
    return (isFile || !isOld) && ((countsOpenings && isOld) || mayChange(held, call));
}

/// Lets nothing but the calls of the table stop the process, whoever it starts included.
void filterCalls(const std::vector<sock_filter>& refusal) {
    std::vector<sock_filter> filter{BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    filter.insert(filter.end(), refusal.begin(), refusal.end());
    for (const Call& call : calls) {
        filter.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(call.number), 0, 1));
        filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRACE));
    }
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0)
        _exit(126);
}

class Stepper {
public:
    explicit Stepper(Options given) : options(std::move(given)), report(options.report) {}

    /// @return the status that the program ended with
    int run() {
        start();
        int status = 0, result = 0;
        for (pid_t task = 0; (task = waitpid(-1, &status, __WALL)) > 0;) {
            if (WIFSTOPPED(status))
                goOn(task, status >> 16, WSTOPSIG(status));
            else
                tasks.erase(task);
            if (task == program) result = status;
        }
        return WIFEXITED(result) ? WEXITSTATUS(result) : 128 + WTERMSIG(result);
    }

private:
    void start() {
        std::array<int, 2> gate{};
        if (pipe2(gate.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
        program = fork();
        if (program == 0) {
            char go = 0;
            setpgid(0, 0); // Ctrl-C is for it alone
            if (read(gate[0], &go, 1) != 1) _exit(126);
            filterCalls(options.refusal);
            execvp(*options.command, options.command);
            _exit(127);
        }
        constexpr long follow = PTRACE_O_TRACESECCOMP | PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK | PTRACE_O_TRACECLONE |
                                PTRACE_O_TRACEEXEC | PTRACE_O_EXITKILL;
        if (ptrace(PTRACE_SEIZE, program, nullptr, follow) != 0 || write(gate[1], "", 1) != 1)
            throw std::runtime_error("the program cannot be traced");
        tasks.insert(program);
        close(gate[0]);
        close(gate[1]);
    }

    void goOn(pid_t task, int event, int signal) {
        tasks.insert(task);
        if (event == PTRACE_EVENT_SECCOMP) step(Held(task));
        const bool isStopped = event == PTRACE_EVENT_STOP && signal != SIGTRAP;
        if (endsAll)
            kill(task, SIGKILL);
        else if (isStopped)
            ptrace(PTRACE_LISTEN, task, nullptr, nullptr);
        else
            ptrace(PTRACE_CONT, task, nullptr, static_cast<long>(event == 0 ? signal : 0));
    }

    void step(Held held) {
        const auto call = std::find_if(calls.begin(), calls.end(), [&held](const Call& known) {
            return known.number == static_cast<long>(held.registers.orig_rax);
        });
        const bool isIn = options.at != 0 && count == options.at;
        if (call == calls.end() || (isIn && options.fault != "full")) return;
        if (!isIn && !options.withChildren && !isOwn(held.task)) return;
        const File file = findFile(held, *call);
        if (!counts(held, *call, file, options.openings)) return;
        const bool needsRoom = growing.count(call->number) != 0 || (call->works != Works::onOld && file.getMode() == 0);
        if (isIn && needsRoom) bringIn(held);
        if (isIn) return;
        ++count;
        tell(held, *call, file);
        if (count == options.at && (needsRoom || options.fault != "full")) bringIn(held);
    }

    bool isOwn(pid_t task) const {
        return access(("/proc/" + std::to_string(program) + "/task/" + std::to_string(task)).c_str(), F_OK) == 0;
    }

    void tell(const Held& held, const Call& call, const File& file) {
        std::string name;
        std::getline(std::ifstream(held.getFolder() + "/comm"), name);
        report << name << ' ' << call.name << ' ' << file.getName();
        if (call.works == Works::onOld && call.second != none) report << " -> " << held.readText(call.second);
        report << std::endl;
    }

    void bringIn(Held& held) {
        if (options.fault == "kill")
            kill(program, SIGKILL);
        else if (options.fault == "interrupt")
            kill(-program, SIGINT);
        else if (options.fault != "kill-all")
            held.fail(errors.at(options.fault));
        else {
            endsAll = true;
            for (const pid_t task : tasks) kill(task, SIGKILL);
        }
    }

    Options options;
    std::ofstream report;
    pid_t program = 0;
    std::set<pid_t> tasks; ///< all that are alive, threads included
    long count = 0;
    bool endsAll = false;
};

} // namespace

int main(int, char** argv) {
    try {
        return Stepper(readOptions(argv)).run();
    } catch (const std::exception& error) {
        std::cerr << "stepper: " << error.what() << '\n';
        return 125;
    }
}
