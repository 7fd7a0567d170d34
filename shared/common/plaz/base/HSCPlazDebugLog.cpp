#include "plaz/base/HSCPlazDebugLog.h"

#include "support/HIOStream.h"
#include "support/HPAParamMgr.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"
#include "support/HUTText.h"

#include <fstream>
#include <iostream>

namespace {

constexpr const char* logFileName = "plaz.log";

/// Opens the log in the current directory; a failure marks the stream and is tried again at the next line.
void openLogFile(std::ofstream& file) {
    const std::string dir = HUTEnv::getPWD();
    file.clear();
    if (HUTFile::isWriteable(dir))
        file = HIOStream::openForWriting(dir + HUTFile::getDirSeparator() + logFileName, std::ios::trunc);
    if (!file.is_open()) file.setstate(std::ios::failbit);
}

} // namespace

bool HSCPlazDebugLog::isEnabled() {
    static const bool enabled = HPAParamMgr::getParamMgr().getValueIfExistAsBool("plaz.enableLog", false);
    return enabled;
}

void HSCPlazDebugLog::write(const std::string& line) {
    if (!isEnabled()) return;
    // Never destroyed: static objects may log in their destructors, and a log that is opened again begins empty.
    static auto& file = *new std::ofstream; // raw: HIOStream opens it, at the first line for which it can
    if (!file.is_open()) openLogFile(file);
    const std::string shown = HUTText::printable(line, true); // it may hold what a store says
    std::cout << shown << std::endl;
    if (file.is_open() && file.good()) file << shown << std::endl;
}
