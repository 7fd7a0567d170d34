#include "plaz/base/HSCPlazStoreLayout.h"

#include "support/HUTDigest.h"
#include "support/HUTFile.h"
#include "support/HUTFileTree.h"

#include <boost/filesystem/path.hpp>

#include <algorithm>
#include <initializer_list>

namespace {

std::string markerIn(const std::string& dir) {
    return dir + "/" + HSCPlazStoreLayout::doneMarker;
}

std::string findLinkAmong(std::initializer_list<std::string> dirs) {
    const auto* const link =
        std::find_if(dirs.begin(), dirs.end(), [](const std::string& dir) { return HUTFileTree::isLink(dir); });
    return link == dirs.end() ? std::string() : *link;
}

} // namespace

std::string HSCPlazWorkLayout::findWorkLink() const {
    const std::string index = getIndex();
    return findLinkAmong({below(m_work, hiddenDir), index, below(index, HSCPlazStoreLayout::gitDir), getStaging()});
}

std::string HSCPlazStoreLayout::findAreaLink() const {
    const std::string hidden = getHiddenDir();
    return findLinkAmong({hidden, below(hidden, ".catalog"), getTreesDir(), getIncoming()});
}

std::string HSCPlazStoreLayout::findLink() const {
    const std::string link = findAreaLink();
    return link.empty() ? findWorkLink() : link;
}

std::string HSCPlazStoreLayout::findLinkAbove(const std::string& database) {
    const boost::filesystem::path dir = boost::filesystem::path(database).parent_path();
    return dir.filename() == hiddenDir ? findLinkAmong({dir.generic_string()}) : std::string();
}

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

bool HSCPlazStoreLayout::removeOrPutAside(const std::string& dir) {
    if (HUTFile::rmRecursive(dir)) return true;
    const std::string start = dir.substr(0, dir.rfind('/') + 1) + oldFiles;
    int number = 1;
    while (HUTFile::exists(start + std::to_string(number))) ++number;
    return HUTFile::rename(dir, start + std::to_string(number));
}
