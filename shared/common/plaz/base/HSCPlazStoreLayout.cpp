#include "plaz/base/HSCPlazStoreLayout.h"

#include "support/HUTDigest.h"
#include "support/HUTFile.h"

namespace {

std::string markerIn(const std::string& dir) {
    return dir + "/" + HSCPlazStoreLayout::doneMarker;
}

} // namespace

std::string HSCPlazStoreLayout::getFolderOf(const std::string& dir) const {
    const std::string start = m_area + "/";
    const bool isThere = !m_area.empty() && dir.compare(0, start.size(), start) == 0;
    return isThere ? dir.substr(start.size()) : std::string();
}

std::string HSCPlazStoreLayout::getTreeFile(const std::string& folder, const std::string& commit) const {
    return getTreesDir() + "/" + HUTDigest::ofBlob(HUTDigest::Kind::sha1, folder + "\n" + commit);
}

bool HSCPlazStoreLayout::isComplete(const std::string& dir) {
    return !dir.empty() && HUTFile::exists(markerIn(dir));
}

bool HSCPlazStoreLayout::markComplete(const std::string& dir) {
    return HUTFile::writeAtomically(markerIn(dir), "");
}

void HSCPlazStoreLayout::unmark(const std::string& dir) {
    HUTFile::rmRecursive(markerIn(dir));
}
