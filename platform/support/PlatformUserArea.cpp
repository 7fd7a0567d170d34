#include "support/PlatformUserArea.h"

#include "support/PlatformFile.h"
#include "support/PlatformSystem.h"

namespace platform {

std::string getUserArea() {
    const std::string chosen = getVariable("GDA_APPDATA_DIR").value_or("");
    return getCanonicalName(chosen.empty() ? getHomeDir() + "/.Zentor" : chosen);
}

Rights rightsOf(const std::string& path) {
    const std::string area = getUserArea();
    const std::string name = getCanonicalName(path) + "/";
    return name.compare(0, area.size() + 1, area + "/") == 0 ? Rights::forGroup : Rights::byMask;
}

std::optional<Rights> limitOfCopy(const std::string& source, const std::string& dest) {
    const Rights rights = rightsOf(dest);
    const bool isLeaving = rights == Rights::byMask && rightsOf(source) != Rights::byMask;
    return isLeaving ? std::nullopt : std::make_optional(rights);
}

} // namespace platform
