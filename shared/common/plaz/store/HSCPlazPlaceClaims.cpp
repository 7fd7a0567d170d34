#include "plaz/store/HSCPlazPlaceClaims.h"

#include "plaz/pref/HSCPlazPathMgr.h"
#include "support/HUTFile.h"
#include "support/HUTFileTree.h"

HSCPlazPlaceClaims::HSCPlazPlaceClaims(const HSCPlazPathMgr& paths) {
    for (const std::string& own : paths.getOwnPlaces()) add("", own);
}

std::string HSCPlazPlaceClaims::realNameOf(const std::string& dir) const {
    const std::string name = HUTFile::getNonNativeCanonicalName(dir);
    const std::size_t end = name.rfind('/');
    if (end == 0 || end == std::string::npos) return name;
    const auto [parent, isNew] = m_realParents.try_emplace(name.substr(0, end));
    if (isNew) parent->second = HUTFile::getRealName(parent->first);
    const std::string realName = HUTFileTree::isLink(name) ? HUTFile::getRealName(name) : std::string();
    if (!realName.empty()) return realName;
    // A link that leads nowhere is a place as well.
    return parent->second.empty() ? name : parent->second + name.substr(end);
}

void HSCPlazPlaceClaims::add(const std::string& store, const std::string& dir) {
    if (!dir.empty()) m_claims.push_back({{store, dir}, realNameOf(dir)});
}

std::optional<HSCPlazPlace> HSCPlazPlaceClaims::findOwner(const std::string& store, const std::string& dir) const {
    if (dir.empty()) return std::nullopt;
    const std::string realName = realNameOf(dir);
    for (const Claim& claim : m_claims) {
        const bool isOthers = claim.place.store != store;
        if (isOthers && meet(claim.realName, realName)) return claim.place;
        if (!isOthers && claim.realName == realName) return std::nullopt;
    }
    return std::nullopt;
}

std::optional<HSCPlazPlace> HSCPlazPlaceClaims::findMet(const HSCPlazPlace& area, const std::string& path) const {
    const std::string realArea = realNameOf(area.directory), realName = realNameOf(path);
    for (const Claim& claim : m_claims)
        if (claim.place.store != area.store && claim.realName != realArea &&
            HUTFile::isNamedBeneath(realArea, claim.realName) && meet(claim.realName, realName))
            return claim.place;
    return std::nullopt;
}

bool HSCPlazPlaceClaims::meet(const std::string& a, const std::string& b) {
    return HUTFile::isNamedBeneath(a, b) || HUTFile::isNamedBeneath(b, a);
}
