#include "support/PlatformFile.h"

#include "Win32.h"
#include "support/HI18N.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <locale>
#include <memory>
#include <thread>

namespace platform {

namespace {

using Status = HIOStatus;
using win32::Handle;
using win32::OwnerOnly;
using win32::shareAll;
using win32::toLongName;

Handle open(const std::wstring& name, DWORD access) {
    // With this flag directories open, too; what they are is seen afterwards.
    return Handle(
        CreateFileW(name.c_str(), access, shareAll, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

Status statusOfError(DWORD error) {
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_INVALID_DRIVE:
    case ERROR_DIRECTORY:
    case ERROR_FILENAME_EXCED_RANGE:
        return Status::missing;
    default:
        return Status::unreadable;
    }
}

// There are disks that cannot be told to keep what was written.
bool isRefusalToFlush(DWORD error) {
    return error == ERROR_INVALID_FUNCTION || error == ERROR_NOT_SUPPORTED;
}

bool flushFile(const Handle& file) {
    return file && (FlushFileBuffers(file.get()) || isRefusalToFlush(GetLastError()));
}

bool isRegularFile(const Handle& file) {
    BY_HANDLE_FILE_INFORMATION info{};
    return GetFileType(file.get()) == FILE_TYPE_DISK && GetFileInformationByHandle(file.get(), &info) &&
           (info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

/// Fills @p content from its beginning; @return the bytes read, negative when that failed.
std::int64_t fill(const Handle& file, std::string& content) {
    std::size_t size = 0;
    while (size < content.size()) {
        const auto wanted = static_cast<DWORD>(std::min<std::size_t>(content.size() - size, 1u << 30));
        DWORD count = 0;
        if (!ReadFile(file.get(), content.data() + size, wanted, &count, nullptr)) return -1;
        if (count == 0) break;
        size += count;
    }
    return static_cast<std::int64_t>(size);
}

Status readAll(const Handle& file, std::string& content, std::uint64_t maxSize) {
    if (!isRegularFile(file)) return Status::notRegular;
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(file.get(), &size)) return Status::unreadable;
    if (static_cast<std::uint64_t>(size.QuadPart) > maxSize) return Status::tooLarge;
    content.resize(static_cast<std::size_t>(size.QuadPart));
    const std::int64_t count = fill(file, content);
    if (count < 0) return Status::unreadable;
    content.resize(static_cast<std::size_t>(count));
    return Status::ok;
}

bool writeAll(const Handle& file, const std::string& content) {
    for (std::size_t written = 0; written < content.size();) {
        const auto wanted = static_cast<DWORD>(std::min<std::size_t>(content.size() - written, 1u << 30));
        DWORD count = 0;
        if (!WriteFile(file.get(), content.data() + written, wanted, &count, nullptr) || count == 0) return false;
        written += count;
    }
    return true;
}

bool liesBeneath(const std::wstring& root, const std::wstring& name) {
    return name.size() > root.size() && name.compare(0, root.size(), root) == 0 &&
           (root.back() == L'\\' || name[root.size()] == L'\\');
}

/// The name below the directory with "." and ".." resolved; empty when it leaves the directory or begins elsewhere.
std::wstring joinBeneath(const std::wstring& root, const std::string& relative) {
    if (relative.front() == '/' || relative.find_first_of("\\:") != std::string::npos) return {};
    const std::filesystem::path inside = std::filesystem::path(win32::toWide(relative)).lexically_normal();
    if (*inside.begin() == L"..") return {};
    std::wstring name = root + (root.back() == L'\\' ? L"" : L"\\") + inside.native();
    std::replace(name.begin(), name.end(), L'/', L'\\');
    return name;
}

// What others do to a file passes soon: virus scanners, indexers, a reader.
bool passes(DWORD error) {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION || error == ERROR_ACCESS_DENIED ||
           error == ERROR_USER_MAPPED_FILE || error == ERROR_DIR_NOT_EMPTY;
}

bool makeWriteable(const std::wstring& name) {
    const DWORD attributes = GetFileAttributesW(name.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0 &&
           SetFileAttributesW(name.c_str(), attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
}

bool moveOver(const std::wstring& from, const std::wstring& to) {
    return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}

bool isDirectory(const std::wstring& name) {
    const DWORD attributes = GetFileAttributesW(name.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

/// Waits for what others do, at growing distances: for two seconds and a half in all, however many files it is about.
class Patience {
public:
    /// Calls @p attempt, which returns 0 or an error, until it is done or fails for good.
    template <typename Attempt> bool untilDone(Attempt attempt) {
        constexpr std::chrono::milliseconds longestPause{1280};
        for (;; m_pause *= 2) {
            const DWORD error = attempt();
            if (error == 0) return true;
            if (!passes(error) || m_pause > longestPause) return false;
            std::this_thread::sleep_for(m_pause);
        }
    }

private:
    std::chrono::milliseconds m_pause{5};
};

bool moveOverPatiently(const std::wstring& from, const std::wstring& to) {
    if (isDirectory(to)) return false;
    const bool wasReadOnly = makeWriteable(to); // a read-only file is replaced like any other
    if (Patience().untilDone([&] { return moveOver(from, to) ? 0 : GetLastError(); })) return true;
    if (wasReadOnly) SetFileAttributesW(to.c_str(), GetFileAttributesW(to.c_str()) | FILE_ATTRIBUTE_READONLY);
    return false;
}

// While the name of a removed file stays, the system denies access to it.
bool isGone(const std::wstring& name) {
    return GetFileAttributesW(name.c_str()) == INVALID_FILE_ATTRIBUTES &&
           statusOfError(GetLastError()) == Status::missing;
}

// What somebody holds open keeps its name until he lets go of it.
bool untilGone(const std::wstring& name, BOOL WINAPI (*remove)(const wchar_t*), Patience& patience) {
    return patience.untilDone([&]() -> DWORD {
        const DWORD error = remove(name.c_str()) ? ERROR_SHARING_VIOLATION : GetLastError();
        return isGone(name) ? 0 : error;
    });
}

/// A file made for this call alone; removed again unless it has been renamed.
class TemporaryFile {
public:
    TemporaryFile(const std::wstring& beside, bool ownerOnly) {
        static std::atomic<unsigned> counter{0};
        OwnerOnly rights;
        const std::wstring start =
            beside.substr(0, beside.rfind(L'\\') + 1) + L".plaz-" + std::to_wstring(GetCurrentProcessId()) + L'-';
        if (ownerOnly && !rights.get()) return;
        do {
            m_name = start + std::to_wstring(counter++) + L".tmp";
            file = Handle(CreateFileW(m_name.c_str(), GENERIC_WRITE, 0, ownerOnly ? rights.get() : nullptr, CREATE_NEW,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
        } while (!file && GetLastError() == ERROR_FILE_EXISTS);
        m_exists = static_cast<bool>(file);
    }
    ~TemporaryFile() {
        file.close();
        if (m_exists) DeleteFileW(m_name.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    bool renameTo(const std::wstring& name) {
        file.close();
        m_exists = !moveOverPatiently(m_name, name);
        return !m_exists;
    }

    Handle file;

private:
    std::wstring m_name;
    bool m_exists = false;
};

bool removeEntry(const std::wstring& name, DWORD attributes, bool isLink, Patience& patience);

bool removeEntries(const std::wstring& dir, const std::string& kept, Patience& patience) {
    WIN32_FIND_DATAW entry{};
    const HANDLE search = FindFirstFileW((dir + L"\\*").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) return isGone(dir);
    const std::unique_ptr<void, BOOL (*)(HANDLE)> owned(search, FindClose);
    bool areGone = true;
    do {
        const std::wstring_view name = entry.cFileName;
        if (name == L"." || name == L".." || win32::toUtf8(name) == kept) continue;
        const bool isLink = win32::isLink(entry.dwFileAttributes, entry.dwReserved0);
        areGone = removeEntry(dir + L'\\' + std::wstring(name), entry.dwFileAttributes, isLink, patience) && areGone;
    } while (FindNextFileW(search, &entry));
    return areGone;
}

// Read-only files, such as git's objects, are not removed as they are. A link goes, what it leads to stays.
bool removeEntry(const std::wstring& name, DWORD attributes, bool isLink, Patience& patience) {
    if ((attributes & FILE_ATTRIBUTE_READONLY) != 0) makeWriteable(name);
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return untilGone(name, DeleteFileW, patience);
    if (!isLink && !removeEntries(name, "", patience)) return false;
    return untilGone(name, RemoveDirectoryW, patience);
}

bool flushFile(const std::wstring& name, Patience& patience) {
    const bool wasReadOnly = makeWriteable(name);
    const bool isFlushed = patience.untilDone([&name] {
        const Handle file = open(name, GENERIC_WRITE);
        return flushFile(file) ? 0 : GetLastError();
    });
    if (wasReadOnly) SetFileAttributesW(name.c_str(), GetFileAttributesW(name.c_str()) | FILE_ATTRIBUTE_READONLY);
    return isFlushed;
}

bool flushAll(const std::string& path, Patience& patience) {
    const std::wstring name = toLongName(path);
    if (!isDirectory(name)) return flushFile(name, patience);
    const auto entries = listEntries(path);
    return entries && std::all_of(entries->begin(), entries->end(),
                                  [&](const std::string& entry) { return flushAll(path + "/" + entry, patience); });
}

/// Boost turns texts into names, and names into texts, by the rule of all others here: in UTF-8, and without an error
/// for what is no text. It gives and wants all of a text at once, with room for it.
class NameConversion : public std::codecvt<wchar_t, char, std::mbstate_t> {
    template <typename From, typename To>
    static result convert(const From* from, const From* end, const From*& next, To* to, To* toEnd, To*& toNext) {
        const auto text = HI18N::convert(std::basic_string<From>(from, end));
        if (text.size() > static_cast<std::size_t>(toEnd - to)) return error;
        next = end;
        toNext = std::copy(text.begin(), text.end(), to);
        return ok;
    }
    result do_in(std::mbstate_t& /*state*/, const char* from, const char* end, const char*& next, wchar_t* to,
                 wchar_t* toEnd, wchar_t*& toNext) const override {
        return convert(from, end, next, to, toEnd, toNext);
    }
    result do_out(std::mbstate_t& /*state*/, const wchar_t* from, const wchar_t* end, const wchar_t*& next, char* to,
                  char* toEnd, char*& toNext) const override {
        return convert(from, end, next, to, toEnd, toNext);
    }
};

[[maybe_unused]] const std::locale replaced =
    boost::filesystem::path::imbue(std::locale(std::locale(), new NameConversion));

} // namespace

const std::string nullDevice = "NUL";

boost::filesystem::path toSystemName(const std::string& name) {
    return toLongName(name);
}

std::string makeAbsolute(const std::string& name) {
    return win32::toGenericName(toLongName(name));
}

// Without "linguistic" the system applies the rule of its disks, which changes no length.
std::string getNameKey(const std::string& name) {
    const std::wstring wide = win32::toWide(name);
    const int size = static_cast<int>(wide.size());
    std::wstring key(wide.size(), L'\0');
    LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_UPPERCASE, wide.data(), size, key.data(), size, nullptr, nullptr, 0);
    return win32::toUtf8(key);
}

// RATIONALE: a handle of a directory keeps those above it from being renamed, so that none is held; what is read shows
// by its own handle where it lies.
OpenDirectory::OpenDirectory(const std::string& dir) : m_handle(0) {
    if (dir.empty() || holdsNull(dir)) return;
    const Handle handle = open(toLongName(dir), FILE_READ_ATTRIBUTES);
    m_state = handle ? Status::ok : statusOfError(GetLastError());
    if (handle) m_dir = win32::toUtf8(win32::getFinalName(handle));
}

OpenDirectory::~OpenDirectory() = default;

HIOStatus OpenDirectory::read(const std::string& relative, std::string& content, std::uint64_t maxSize) const {
    if (m_state != Status::ok) return m_state;
    if (m_dir.empty() || relative.empty() || holdsNull(relative)) return Status::missing;
    const std::wstring root = win32::toWide(m_dir);
    const std::wstring name = joinBeneath(root, relative);
    if (name.empty()) return Status::outside;
    const Handle file = open(name, GENERIC_READ);
    if (!file) return statusOfError(GetLastError());
    return liesBeneath(root, win32::getFinalName(file)) ? readAll(file, content, maxSize) : Status::outside;
}

HIOStatus readFile(const std::string& file, std::string& content, std::uint64_t maxSize, bool throughLink) {
    if (file.empty() || holdsNull(file)) return Status::missing;
    const std::wstring name = toLongName(file);
    const Handle handle = throughLink ? open(name, GENERIC_READ) : win32::openItself(name, GENERIC_READ, OPEN_EXISTING);
    return handle ? readAll(handle, content, maxSize) : statusOfError(GetLastError());
}

HIOStatus readInParts(const std::string& file, const std::function<void(const FileFacts&)>& begin,
                      const std::function<void(std::string_view)>& take) {
    if (file.empty() || holdsNull(file)) return Status::missing;
    const Handle handle = open(toLongName(file), GENERIC_READ);
    if (!handle) return statusOfError(GetLastError());
    if (!isRegularFile(handle)) return Status::notRegular;
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(handle.get(), &size)) return Status::unreadable;

    auto left = static_cast<std::uint64_t>(size.QuadPart);
    begin({left, std::nullopt});
    std::array<char, std::size_t{1} << 16> buffer;
    for (;;) {
        DWORD count = 0;
        if (!ReadFile(handle.get(), buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr) || count > left)
            return Status::unreadable;
        if (count == 0) return left == 0 ? Status::ok : Status::unreadable;
        take({buffer.data(), count});
        left -= count;
    }
}

std::string readStart(const std::string& file, std::size_t size) {
    if (file.empty() || holdsNull(file)) return {};
    const Handle handle = open(toLongName(file), GENERIC_READ);
    if (!handle || !isRegularFile(handle)) return {};
    std::string start(size, '\0');
    start.resize(static_cast<std::size_t>(std::max<std::int64_t>(fill(handle, start), 0)));
    return start;
}

// RATIONALE: asked of the file itself, since its directory may hear of a new size only when it is closed.
std::uint64_t getSize(const std::string& path) {
    const Handle file = open(toLongName(path), FILE_READ_ATTRIBUTES);
    LARGE_INTEGER size{};
    return file && GetFileSizeEx(file.get(), &size) ? static_cast<std::uint64_t>(size.QuadPart) : 0;
}

std::string getStamp(const std::string& path) {
    const Handle file = open(toLongName(path), FILE_READ_ATTRIBUTES);
    BY_HANDLE_FILE_INFORMATION info{};
    if (!file || !GetFileInformationByHandle(file.get(), &info)) return {};
    const auto whole = [](DWORD high, DWORD low) { return std::to_string(std::uint64_t{high} << 32 | low); };
    return whole(info.nFileIndexHigh, info.nFileIndexLow) + ':' + whole(info.nFileSizeHigh, info.nFileSizeLow) + ':' +
           whole(info.ftLastWriteTime.dwHighDateTime, info.ftLastWriteTime.dwLowDateTime);
}

std::string getIdentity(const std::string& path) {
    const Handle file = open(toLongName(path), FILE_READ_ATTRIBUTES);
    BY_HANDLE_FILE_INFORMATION info{};
    if (!file || !GetFileInformationByHandle(file.get(), &info)) return {};
    return std::to_string(info.dwVolumeSerialNumber) + ':' +
           std::to_string(std::uint64_t{info.nFileIndexHigh} << 32 | info.nFileIndexLow);
}

bool canFlush(const std::string& path) {
    const Handle file = open(toLongName(path), GENERIC_WRITE);
    return !file || FlushFileBuffers(file.get()) || !isRefusalToFlush(GetLastError());
}

bool flush(const std::string& path) {
    Patience patience;
    return flushAll(path, patience);
}

// Names are written through as they change.
bool flushNames(const std::string& /*dir*/) {
    return true;
}

bool isWriteable(const std::string& path) {
    const std::wstring name = toLongName(path);
    const DWORD attributes = GetFileAttributesW(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return false;
    const bool isDirectory = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    // Who may write to what another program keeps to itself may do so later.
    return open(name, isDirectory ? FILE_ADD_FILE | FILE_ADD_SUBDIRECTORY : FILE_WRITE_DATA) ||
           GetLastError() == ERROR_SHARING_VIOLATION;
}

bool isOnReadOnlyDisk(const std::string& path) {
    return !open(toLongName(path), FILE_WRITE_ATTRIBUTES) && GetLastError() == ERROR_WRITE_PROTECT;
}

bool isProgram(const std::string& path) {
    const DWORD attributes = GetFileAttributesW(toLongName(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

std::string resolveLinks(const std::string& path, std::error_code& error) {
    const Handle file = open(toLongName(path), FILE_READ_ATTRIBUTES);
    const Status status = file ? Status::ok : statusOfError(GetLastError());
    const std::string name = win32::toGenericName(win32::getFinalName(file));
    error.clear();
    if (name.empty())
        error = std::make_error_code(status == Status::missing ? std::errc::no_such_file_or_directory
                                                               : std::errc::io_error);
    return name;
}

bool removeTree(const std::string& path) {
    const std::wstring name = toLongName(path);
    const DWORD attributes = GetFileAttributesW(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return statusOfError(GetLastError()) == Status::missing;
    // What cannot be looked at may be one.
    const bool mayBeLink =
        (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 && !win32::openItself(name, 0, OPEN_EXISTING);
    Patience patience;
    return removeEntry(name, attributes, mayBeLink, patience);
}

bool removeEntriesExcept(const std::string& dir, const std::string& keptName) {
    Patience patience;
    return removeEntries(toLongName(dir), keptName, patience);
}

// Rights are those of the directory above.
bool makeDirectory(const std::string& dir, Rights /*rights*/) {
    return !holdsNull(dir) && CreateDirectoryW(toLongName(dir).c_str(), nullptr);
}

// What lies in it already keeps its rights: a call that changed them would look at all of it.
void keepForOwner(const std::string& dir) {
    OwnerOnly rights;
    constexpr SECURITY_INFORMATION part = DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION;
    if (rights.get()) SetFileSecurityW(toLongName(dir).c_str(), part, rights.get()->lpSecurityDescriptor);
}

bool copyFile(const std::string& source, const std::string& dest, std::optional<Rights> /*limit*/) {
    return CopyFileW(toLongName(source).c_str(), toLongName(dest).c_str(), TRUE);
}

bool rename(const std::string& from, const std::string& to) {
    return moveOverPatiently(toLongName(from), toLongName(to));
}

bool makeNew(const std::string& file) {
    OwnerOnly rights;
    return rights.get() && Handle(CreateFileW(toLongName(file).c_str(), GENERIC_WRITE, 0, rights.get(), CREATE_NEW,
                                              FILE_ATTRIBUTE_NORMAL, nullptr));
}

// While the handle is there, nothing else comes to stand at that name.
std::ofstream openForWriting(const std::string& file, std::ios::openmode mode, Rights /*rights*/) {
    const std::wstring name = toLongName(file);
    const Handle held = win32::openItself(name, 0, OPEN_ALWAYS, nullptr, FILE_SHARE_READ | FILE_SHARE_WRITE);
    return held ? std::ofstream(std::filesystem::path(name), mode | std::ios::binary) : std::ofstream();
}

bool writeWhole(const std::string& file, const std::string& content, Rights rights, bool isFlushed) {
    if (holdsNull(file)) return false;
    const std::wstring name = toLongName(file);
    TemporaryFile temporary(name, rights == Rights::forOwner);
    return temporary.file && writeAll(temporary.file, content) && (!isFlushed || flushFile(temporary.file)) &&
           temporary.renameTo(name);
}

bool exchange(const std::string& /*a*/, const std::string& /*b*/) {
    return false;
}

} // namespace platform
