#include "plaz/base/HSCPlazChangeLog.h"

#include "plaz/base/HSCPlazStoreLayout.h"
#include "support/HIOStream.h"

bool HSCPlazChangeLog::read(const std::string& dir, const std::vector<std::string>& folders, std::string& text) {
    if (dir.empty()) return false;
    const HIOStream::Root root(dir);
    for (const std::string& folder : folders)
        if (root.read(folder + HSCPlazStoreLayout::changeLogFile, text) == HIOStream::Status::ok) return true;
    return false;
}
