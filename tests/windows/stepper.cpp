// The program, of its own objects, with one fault brought in just before the N-th call by which it would change a file.
//
//   STEPPER="FAULT KIND N REPORT" stepper.exe ARG...
//
// KIND, N and REPORT are as the options of the other systems' stepper, N = 0 for no fault. The FAULTs are "kill",
// errors by the same names, and three of this system's own. With them somebody has the file of the N-th opening open,
// too:
//
//   hold       and lets it be read, but not written, renamed or removed, nor what it lies in be renamed
//   lock       and keeps everybody else from it
//   hold-once  like hold, but lets go of it after he has been in the way three times
//
// RATIONALE: whichever library changes a file, its call passes kernelbase.dll, which imports a few native ones for all
// of them. Their entries are replaced there. Calls on files below GDA_APPDATA_DIR count; what children do is not seen.

#include <windows.h>

#include <winternl.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <mutex>
#include <sstream>
#include <string>

extern "C" NTSTATUS NTAPI NtWriteFile(HANDLE, HANDLE, PIO_APC_ROUTINE, PVOID, PIO_STATUS_BLOCK, PVOID, ULONG,
                                      PLARGE_INTEGER, PULONG);
extern "C" NTSTATUS NTAPI NtFlushBuffersFile(HANDLE, PIO_STATUS_BLOCK);

namespace {

constexpr ACCESS_MASK reading = GENERIC_READ | GENERIC_EXECUTE | FILE_READ_DATA | FILE_EXECUTE;
constexpr ACCESS_MASK taking = DELETE | GENERIC_WRITE | GENERIC_ALL | FILE_WRITE_DATA | FILE_APPEND_DATA;
constexpr NTSTATUS denied = static_cast<NTSTATUS>(0xC0000022), shared = static_cast<NTSTATUS>(0xC0000043);
const std::map<std::string, NTSTATUS> errors{{"ENOSPC", static_cast<NTSTATUS>(0xC000007F)},
                                             {"EIO", static_cast<NTSTATUS>(0xC0000185)},
                                             {"EACCES", denied},
                                             {"EROFS", static_cast<NTSTATUS>(0xC00000A2)},
                                             {"EMFILE", static_cast<NTSTATUS>(0xC000011F)}};

struct Call {
    std::string name;
    std::wstring file; ///< from the drive on
    bool opens = false;
    bool changes = false;
    bool takes = false;   ///< opens it to write, rename or remove it
    bool renames = false; ///< what nothing below may be open for
    bool reads = false;
};

class Stepper {
public:
    explicit Stepper(const std::string& order) {
        std::string kind, report;
        std::istringstream(order) >> m_fault >> kind >> m_at >> report;
        m_countsOpenings = kind == "open";
        m_obstacles = m_fault == "hold-once" ? 3 : -1;
        m_report = CreateFileA(report.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr);
    }

    /// @return the error that the call fails with, or 0
    NTSTATUS step(const Call& call) {
        // What a running git prints is looked at again and again, so that its file would move all numbers.
        if (call.file.rfind(m_home, 0) != 0 || call.file.find(L"git_fork.log") != std::wstring::npos) return 0;
        const std::lock_guard<std::mutex> guard(m_mutex);
        const bool isCounted = call.changes || (m_countsOpenings && call.opens);
        if (isCounted && (m_at == 0 || m_count < m_at)) {
            ++m_count;
            tell(call);
            if (m_count == m_at) return bringIn(call);
        }
        return resist(call);
    }

private:
    // Past kernelbase.dll, so that it is no step itself.
    void tell(const Call& call) {
        IO_STATUS_BLOCK io{};
        std::string line =
            "plaz " + call.name + ' ' + std::filesystem::path(call.file.substr(2)).generic_u8string() + '\n';
        NtWriteFile(m_report, nullptr, nullptr, nullptr, &io, line.data(), static_cast<ULONG>(line.size()), nullptr,
                    nullptr);
    }

    NTSTATUS bringIn(const Call& call) {
        if (m_fault == "kill") TerminateProcess(GetCurrentProcess(), 137);
        const auto error = errors.find(m_fault);
        if (error != errors.end()) return error->second;
        m_held = call.file;
        return resist(call);
    }

    NTSTATUS resist(const Call& call) {
        const bool isHeld = call.file == m_held && call.opens && (call.takes || (m_fault == "lock" && call.reads));
        const bool holds = call.renames && m_held.rfind(call.file + L'\\', 0) == 0;
        if (m_obstacles == 0 || (!isHeld && !holds)) return 0;
        --m_obstacles;
        return isHeld ? shared : denied;
    }

    std::string m_fault;
    long m_at = 0, m_count = 0, m_obstacles = 0;
    bool m_countsOpenings = false;
    HANDLE m_report = nullptr;
    std::wstring m_home = std::filesystem::path(_wgetenv(L"GDA_APPDATA_DIR")).make_preferred();
    std::wstring m_held;
    std::mutex m_mutex;
};

Stepper& stepper() {
    static Stepper only(std::getenv("STEPPER"));
    return only;
}

NTSTATUS stepOpening(const char* name, const OBJECT_ATTRIBUTES& object, ACCESS_MASK access, ULONG disposition) {
    std::wstring native(object.ObjectName->Buffer, object.ObjectName->Length / sizeof(wchar_t));
    if (object.RootDirectory != nullptr || native.rfind(LR"(\??\)", 0) != 0) return 0;
    if (native.back() == L'\\') native.pop_back();
    const bool isThere = GetFileAttributesW((LR"(\\?\)" + native.substr(4)).c_str()) != INVALID_FILE_ATTRIBUTES;
    const bool opens = isThere && disposition != FILE_CREATE;
    const bool writes = disposition == FILE_SUPERSEDE || disposition >= FILE_OVERWRITE;
    const bool takes = writes || (access & taking) != 0;
    const bool creates = !isThere && disposition != FILE_OPEN && disposition != FILE_OVERWRITE;
    const bool changes = opens ? takes || (access & FILE_WRITE_ATTRIBUTES) != 0 : creates;
    return stepper().step({name, native.substr(4), opens, changes, takes, false, (access & reading) != 0});
}

NTSTATUS stepHandle(const char* name, HANDLE handle, bool renames = false) {
    std::wstring file(32767, L'\0');
    if (GetFileType(handle) != FILE_TYPE_DISK) return 0;
    file.resize(GetFinalPathNameByHandleW(handle, file.data(), static_cast<DWORD>(file.size()), VOLUME_NAME_DOS));
    return file.size() < 4 ? 0 : stepper().step({name, file.substr(4), false, true, false, renames});
}

template <typename Function, typename... Args> NTSTATUS goOn(NTSTATUS error, Function* function, Args... args) {
    return error != 0 ? error : function(args...);
}

NTSTATUS NTAPI createFile(PHANDLE handle, ACCESS_MASK access, POBJECT_ATTRIBUTES object, PIO_STATUS_BLOCK io,
                          PLARGE_INTEGER size, ULONG attributes, ULONG share, ULONG disposition, ULONG options,
                          PVOID extra, ULONG extraSize) {
    const char* const name = (options & FILE_DELETE_ON_CLOSE) != 0 ? "delete" : "create";
    return goOn(stepOpening(name, *object, access, disposition), NtCreateFile, handle, access, object, io, size,
                attributes, share, disposition, options, extra, extraSize);
}

NTSTATUS NTAPI openFile(PHANDLE handle, ACCESS_MASK access, POBJECT_ATTRIBUTES object, PIO_STATUS_BLOCK io, ULONG share,
                        ULONG options) {
    return goOn(stepOpening("open", *object, access, FILE_OPEN), NtOpenFile, handle, access, object, io, share,
                options);
}

NTSTATUS NTAPI writeFile(HANDLE handle, HANDLE event, PIO_APC_ROUTINE routine, PVOID context, PIO_STATUS_BLOCK io,
                         PVOID bytes, ULONG size, PLARGE_INTEGER at, PULONG key) {
    return goOn(stepHandle("write", handle), NtWriteFile, handle, event, routine, context, io, bytes, size, at, key);
}

NTSTATUS NTAPI setInformation(HANDLE handle, PIO_STATUS_BLOCK io, PVOID information, ULONG size,
                              FILE_INFORMATION_CLASS what) {
    static const std::map<int, const char*> names{{4, "attributes"}, {10, "rename"}, {11, "link"},   {13, "remove"},
                                                  {20, "truncate"},  {64, "remove"}, {65, "rename"}, {72, "link"}};
    const auto name = names.find(what);
    const NTSTATUS error =
        name == names.end() ? 0 : stepHandle(name->second, handle, name->second == std::string("rename"));
    return goOn(error, NtSetInformationFile, handle, io, information, size, what);
}

NTSTATUS NTAPI flushFile(HANDLE handle, PIO_STATUS_BLOCK io) {
    return goOn(stepHandle("flush", handle), NtFlushBuffersFile, handle, io);
}

template <typename Function> ULONG_PTR addressOf(Function* function) {
    return reinterpret_cast<ULONG_PTR>(function);
}

/// Replaces functions that a module imports, by their addresses.
void replaceImports(HMODULE module, const std::map<ULONG_PTR, ULONG_PTR>& replacements) {
    auto* const base = reinterpret_cast<std::byte*>(module);
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const header = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY table = header->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IAT];
    auto* const entries = reinterpret_cast<ULONG_PTR*>(base + table.VirtualAddress);
    for (std::size_t i = 0; i < table.Size / sizeof *entries; ++i) {
        const auto found = replacements.find(entries[i]);
        DWORD old = 0;
        if (found != replacements.end() && VirtualProtect(entries + i, sizeof *entries, PAGE_READWRITE, &old))
            entries[i] = found->second;
    }
}

[[maybe_unused]] const bool isSet = [] {
    stepper();
    const auto find = [](const char* name) { return addressOf(GetProcAddress(GetModuleHandleA("ntdll.dll"), name)); };
    for (const char* const module : {"kernelbase.dll", "kernel32.dll"})
        replaceImports(GetModuleHandleA(module), {{find("NtCreateFile"), addressOf(createFile)},
                                                  {find("NtOpenFile"), addressOf(openFile)},
                                                  {find("NtWriteFile"), addressOf(writeFile)},
                                                  {find("NtSetInformationFile"), addressOf(setInformation)},
                                                  {find("NtFlushBuffersFile"), addressOf(flushFile)}});
    return true;
}();

} // namespace
