#include "plaz/base/HSCPlazFileCopy.h"

#include "plaz/base/HSCPlazStoreLayout.h"
#include "support/HUTFile.h"

namespace {

bool isSkipped(const std::string& name) {
    return name == HSCPlazStoreLayout::gitDir || name == HSCPlazStoreLayout::doneMarker;
}

} // namespace

bool copyWithoutRepository(const std::string& src, const std::string& dest) {
    if (!HUTFile::isDirectory(src)) return HUTFile::copyTo(src, dest, HUTFile::copyOver);
    if (HUTFile::isAKA(src, dest)) return true;
    if (HUTFile::getNonNativeCanonicalName(src) == HUTFile::getNonNativeCanonicalName(dest)) return true;
    if (!HUTFile::mkDirRecursive(dest)) return false;
    const std::string& separator = HUTFile::getDirSeparator();
    const auto names = HUTFile::readDirectory(src);
    bool copied = names.has_value();
    for (const std::string& name : names.value_or(std::vector<std::string>()))
        if (!isSkipped(name))
            copied =
                HUTFile::copyToRecursive(src + separator + name, dest + separator + name, HUTFile::copyOver) && copied;
    return copied;
}
