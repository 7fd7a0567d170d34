#include "plaz/base/HSCPlazChangeLog.h"

#include "plaz/base/HSCPlazLimits.h"
#include "plaz/base/HSCPlazStoreLayout.h"
#include "support/HIOStream.h"

bool HSCPlazChangeLog::read(const std::string& dir, const std::vector<std::string>& folders, std::string& text) {
    if (dir.empty()) return false;
    const HIOStream::Root root(dir);
    const std::uint64_t maxSize = HSCPlazLimits().getFileSize(HSCPlazLimits::File::item);
    for (const std::string& folder : folders)
        if (root.read(folder + HSCPlazStoreLayout::changeLogFile, text, maxSize) == HIOStream::Status::ok) return true;
    return false;
}
