#include "plaz/model/HSCPlazLogger.h"

#include "plaz/base/HSCPlazDebugLog.h"

void HSCPlazLogger::log(const std::string& message) {
    HSCPlazDebugLog::write(message);
}
