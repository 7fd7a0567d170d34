#include "support/HUTEnv.h"

#include "support/HUTFile.h"
#include "support/HUTSysCall.h"
#include "support/PlatformFile.h"
#include "support/PlatformSystem.h"
#include "support/PlatformUserArea.h"

#include <boost/algorithm/string/predicate.hpp>
#include <boost/filesystem/path.hpp>

#include <algorithm>

namespace {

constexpr const char* dataDir = "data"; ///< below an application root

std::string join(const std::string& dir, const std::string& relative) {
    if (relative.empty()) return dir;
    return relative.front() == '/' ? dir + relative : dir + "/" + relative;
}

std::string valueOr(const std::string& name, const std::string& fallback) {
    const std::string value = HUTEnv::getEnv(name);
    return value.empty() ? fallback : value;
}

std::string getRootOfLibrary() {
    return HUTFile::getCanonicalName(platform::getLibraryFile() + "/../../share/plaz");
}

std::string getAppRoot() {
    const std::string root = HUTEnv::getEnv("GDA_APPROOT");
    return root.empty() ? getRootOfLibrary() : HUTFile::getCanonicalName(root);
}

std::vector<std::string> getListed(const std::string& variable) {
    const std::string list = HUTEnv::getEnv(variable);
    std::vector<std::string> directories;
    for (std::size_t begin = 0; begin < list.size();) {
        const std::size_t end = std::min(list.find(platform::pathListSeparator, begin), list.size());
        if (end > begin) directories.push_back(list.substr(begin, end - begin));
        begin = end + 1;
    }
    return directories;
}

// The directories that a variable lists, or the one below the application root that stands in for them.
std::vector<std::string> getRoots(const std::string& variable, const std::string& belowAppRoot) {
    std::vector<std::string> roots = getListed(variable);
    for (std::string& root : roots) root = HUTFile::getCanonicalName(root);
    if (roots.empty()) roots.push_back(join(getAppRoot(), belowAppRoot));
    return roots;
}

std::string findRoot(const std::vector<std::string>& roots, const std::string& relative) {
    const auto found = std::find_if(roots.begin(), roots.end(), [&relative](const std::string& root) {
        return HUTFile::exists(join(root, relative));
    });
    return found == roots.end() ? std::string() : *found;
}

} // namespace

bool HUTEnv::getEnv(const std::string& name, std::string& value) {
    const std::optional<std::string> found = platform::getVariable(name);
    if (found) value = *found;
    return found.has_value();
}

std::string HUTEnv::getEnv(const std::string& name) {
    std::string value;
    getEnv(name, value);
    return value;
}

bool HUTEnv::isYes(const std::string& name) {
    const std::string value = getEnv(name);
    return !value.empty() && (value.front() == 'Y' || value.front() == 'y');
}

std::string HUTEnv::getPWD() {
    return HUTSysCall::getCurrDir();
}

std::string HUTEnv::getProductName() {
    return valueOr("GDA_PRODUCT_NAME", "Solvan");
}

std::string HUTEnv::getProductVersion() {
    return valueOr("GDA_PRODUCT_VERSION", PLAZ_VERSION);
}

std::string HUTEnv::getProductVersionExcludingPatch() {
    const std::string version = getProductVersion();
    return version.substr(0, version.find_first_of("_-+"));
}

std::string HUTEnv::getProductMajorMinorVersion() {
    const std::string version = getProductVersionExcludingPatch();
    const std::size_t major = version.find('.');
    return major == std::string::npos ? version : version.substr(0, version.find('.', major + 1));
}

void HUTEnv::setProduct(const std::string& name, const std::string& version) {
    if (!name.empty()) platform::setEnvironment("GDA_PRODUCT_NAME", name);
    if (!version.empty()) platform::setEnvironment("GDA_PRODUCT_VERSION", version);
}

std::string HUTEnv::getGDAAppRoot(const std::string& relative) {
    const std::string path = join(getAppRoot(), relative);
    return HUTFile::exists(path) ? path : std::string();
}

std::string HUTEnv::getGDADataDir(const std::string& relative) {
    return findRoot(getRoots("GDA_DATA_DIR", dataDir), relative);
}

std::string HUTEnv::getOwnDataDir(const std::string& relative) {
    const std::string root = findRoot({join(getAppRoot(), dataDir), join(getRootOfLibrary(), dataDir)}, relative);
    return root.empty() ? getGDADataDir(relative) : root;
}

std::string HUTEnv::getGDATpsPath(const std::string& relative) {
    const std::string root = findRoot(getRoots("GDA_TPS_DIR", "tps"), relative);
    return root.empty() ? root : join(root, relative);
}

std::string HUTEnv::findProgram(const std::string& name) {
    static const std::string ending = ".exe";
    std::vector<std::string> names{name};
    if (platform::programEnding.empty() && boost::algorithm::ends_with(name, ending))
        names.push_back(name.substr(0, name.size() - ending.size()));
    for (const std::string& dir : getListed("PATH")) {
        // What the current directory holds is nobody's program.
        if (!boost::filesystem::path(dir).is_absolute()) continue;
        for (const std::string& file : names)
            if (platform::isProgram(join(dir, file))) return join(dir, file);
    }
    return {};
}

std::string HUTEnv::getHDIAppDataDir() {
    return platform::getUserArea();
}

bool HUTEnv::getRegressMode() {
    return isYes("GDA_REGRESS_MODE");
}

std::string HUTEnv::getAuthorities() {
    return platform::getAuthorities();
}

std::vector<std::string> HUTEnv::getAll() {
    return platform::getEnvironment();
}
