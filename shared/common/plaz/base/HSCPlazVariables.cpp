#include "plaz/base/HSCPlazVariables.h"

#include "support/HUTEnv.h"
#include "support/HUTFile.h"

#include <boost/filesystem/path.hpp>

std::string HSCPlazVariables::getDirectory(const char* variable) {
    return toAbsolute(HUTEnv::getEnv(variable));
}

std::string HSCPlazVariables::toAbsolute(const std::string& dir) {
    return boost::filesystem::path(dir).is_absolute() ? dir : HUTFile::getCanonicalName(dir);
}
