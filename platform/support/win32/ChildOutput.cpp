#include "ChildOutput.h"

#include <array>

namespace platform {

namespace {

using win32::Handle;

SECURITY_ATTRIBUTES inherited() {
    return {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
}

// Opened for appending, so that what is added at the end of the run does not meet what a straggler writes.
Handle openLog(const std::string& file) {
    if (file.empty()) return Handle();
    SECURITY_ATTRIBUTES attributes = inherited();
    const std::wstring name = win32::toLongName(file);
    win32::OwnerOnly rights;
    if (!rights.get()) return Handle();
    const Handle truncated = win32::openItself(name, GENERIC_WRITE, OPEN_ALWAYS, rights.get());
    if (!truncated || !SetEndOfFile(truncated.get())) return Handle();
    return win32::openItself(name, FILE_APPEND_DATA | FILE_READ_ATTRIBUTES | SYNCHRONIZE, OPEN_EXISTING, &attributes);
}

} // namespace

Handle openNull(DWORD access) {
    SECURITY_ATTRIBUTES attributes = inherited();
    return Handle(
        CreateFileW(L"NUL", access, FILE_SHARE_READ | FILE_SHARE_WRITE, &attributes, OPEN_EXISTING, 0, nullptr));
}

ChildOutput::ChildOutput(const std::string& file, bool throughPipes)
    : m_closed(CreateEventW(nullptr, TRUE, TRUE, nullptr)), m_file(openLog(file)) {
    if (!m_file) m_file = openNull(GENERIC_WRITE);
    if (!throughPipes) return;
    if (!make(m_out))
        m_failedPipe = 1;
    else if (!make(m_err))
        m_failedPipe = 2;
}

std::uint64_t ChildOutput::getSize() const {
    LARGE_INTEGER size{};
    return GetFileType(m_file.get()) == FILE_TYPE_DISK && GetFileSizeEx(m_file.get(), &size)
               ? static_cast<std::uint64_t>(size.QuadPart)
               : 0;
}

ChildOutput::~ChildOutput() {
    finish();
}

bool ChildOutput::make(Pipe& pipe) {
    SECURITY_ATTRIBUTES attributes = inherited();
    HANDLE read = nullptr;
    HANDLE write = nullptr;
    if (!CreatePipe(&read, &write, &attributes, 0)) return false;
    pipe.read = Handle(read);
    pipe.write = Handle(write);
    return SetHandleInformation(read, HANDLE_FLAG_INHERIT, 0);
}

void ChildOutput::copy(const Pipe& pipe) {
    std::array<char, 4096> buffer{};
    DWORD size = 0;
    while (ReadFile(pipe.read.get(), buffer.data(), static_cast<DWORD>(buffer.size()), &size, nullptr)) {
        DWORD written = 0;
        const std::lock_guard guard(m_writing); // looking for the end and writing there need not be one step
        WriteFile(m_file.get(), buffer.data(), size, &written, nullptr);
    }
    if (--m_readers == 0) SetEvent(m_closed.get());
}

void ChildOutput::begin() {
    if (!m_out.read) return;
    m_out.write.close();
    m_err.write.close();
    m_readers = 2;
    ResetEvent(m_closed.get());
    m_outReader = std::thread([this] { copy(m_out); });
    m_errReader = std::thread([this] { copy(m_err); });
}

void ChildOutput::finish() {
    for (std::thread* reader : {&m_outReader, &m_errReader})
        if (reader->joinable()) reader->join();
}

} // namespace platform
