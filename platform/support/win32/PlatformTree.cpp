#include "support/PlatformTree.h"

#include "Win32.h"
#include "support/PlatformFile.h"

#include <string_view>

namespace platform {

namespace {

using Type = HUTFileEntry::Type;

Type typeOf(const WIN32_FIND_DATAW& entry) {
    if (win32::isLink(entry.dwFileAttributes, entry.dwReserved0)) return Type::other;
    return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? Type::directory : Type::file;
}

bool isGone(DWORD error) {
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND || error == ERROR_DIRECTORY ||
           error == ERROR_INVALID_NAME;
}

class Search {
public:
    explicit Search(const std::wstring& pattern)
        : m_handle(FindFirstFileExW(pattern.c_str(), FindExInfoBasic, &entry, FindExSearchNameMatch, nullptr,
                                    FIND_FIRST_EX_LARGE_FETCH)) {}
    ~Search() {
        if (*this) FindClose(m_handle);
    }
    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;

    explicit operator bool() const { return m_handle != INVALID_HANDLE_VALUE; }
    bool next() { return FindNextFileW(m_handle, &entry); }

    WIN32_FIND_DATAW entry{};

private:
    HANDLE m_handle;
};

HIOStatus statusOfLastError() {
    return isGone(GetLastError()) ? HIOStatus::missing : HIOStatus::unreadable;
}

bool leadsNowhere(const std::string& name) {
    return name.empty() || holdsNull(name);
}

} // namespace

HIOStatus listDirectory(const std::string& dir, std::vector<HUTFileEntry>& entries) {
    if (leadsNowhere(dir)) return HIOStatus::missing;
    Search search(win32::toLongName(dir) + L"\\*");
    if (!search) return statusOfLastError();
    do {
        const std::wstring_view name = search.entry.cFileName;
        if (name != L"." && name != L"..") entries.push_back({win32::toUtf8(name), typeOf(search.entry)});
    } while (search.next());
    return GetLastError() == ERROR_NO_MORE_FILES ? HIOStatus::ok : HIOStatus::unreadable;
}

HIOStatus getSize(const std::string& file, std::uint64_t& bytes) {
    bytes = 0;
    // The search takes these for any characters; no name holds them.
    if (leadsNowhere(file) || file.find_first_of("*?") != std::string::npos) return HIOStatus::missing;
    const Search search(win32::toLongName(file));
    if (!search) return statusOfLastError();
    if (typeOf(search.entry) != Type::file) return HIOStatus::notRegular;
    bytes = std::uint64_t{search.entry.nFileSizeHigh} << 32 | search.entry.nFileSizeLow;
    return HIOStatus::ok;
}

} // namespace platform
