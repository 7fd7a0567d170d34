#include "plaz/base/HSCPlazStoreLayout.h"

#include "support/HUTFile.h"

namespace {

std::string markerIn(const std::string& dir) {
    return dir + "/" + HSCPlazStoreLayout::doneMarker;
}

} // namespace

bool HSCPlazStoreLayout::isComplete(const std::string& dir) {
    return !dir.empty() && HUTFile::exists(markerIn(dir));
}

bool HSCPlazStoreLayout::markComplete(const std::string& dir) {
    return HUTFile::writeAtomically(markerIn(dir), "");
}

void HSCPlazStoreLayout::unmark(const std::string& dir) {
    HUTFile::rmRecursive(markerIn(dir));
}
