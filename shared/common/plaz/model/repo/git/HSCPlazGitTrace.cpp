#include "plaz/model/repo/git/HSCPlazGitTrace.h"

#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/base/HSCPlazTrust.h"
#include "support/HUTText.h"

#include <iostream>

void HSCPlazGitTrace::write(const std::string& line) {
    const std::string masked = HSCPlazTrust::maskSecrets(line);
    std::cout << HUTText::printable(masked, true) << std::endl;
    HSCPlazDebugLog::write(masked);
}
