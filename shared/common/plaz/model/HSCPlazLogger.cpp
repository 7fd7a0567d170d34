#include "plaz/model/HSCPlazLogger.h"

#include "support/HIOStream.h"
#include "support/HPAParamMgr.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"

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

bool HSCPlazLogger::isEnabled() {
    static const bool enabled = HPAParamMgr::getParamMgr().getValueIfExistAsBool("plaz.enableLog", false);
    return enabled;
}

void HSCPlazLogger::log(const std::string& message) {
    if (!isEnabled()) return;
    static std::ofstream file;
    if (!file.is_open()) openLogFile(file);
    std::cout << message << std::endl;
    if (file.is_open() && file.good()) file << message << std::endl;
}
