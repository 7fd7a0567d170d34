#include "plaz/tasks/HSCPlazFetchedFiles.h"

#include "plaz/base/HSCPlazFileCopy.h"
#include "plaz/model/reader/HSCPlazJsonCheck.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazMetadataKeys.h"
#include "support/HCRapidJsonReadWriteUtils.h"

namespace {

std::string parentOf(const std::string& file) {
    return file.substr(0, file.rfind('/'));
}

/// The old file stays until the new one is whole and on the disk.
bool copyWhole(const std::string& source, const std::string& dest) {
    const std::string beside = parentOf(dest) + "/.plaz-copy.tmp";
    if (copyWithoutRepository(source, beside) && HUTFile::flush(beside) && HUTFile::rename(beside, dest)) return true;
    HUTFile::rmRecursive(beside);
    return false;
}

} // namespace

bool HSCPlazFetchedFiles::isCatalog(const std::string& file, HSCPlazReport& problem) {
    if (!HSCPlazJsonCheck::isWhole(file, problem)) return false;
    HSCPlazFindings found;
    HSCPlazJsonDocument document;
    const bool isLoaded = document.load(file, found);
    problem.append(found.toReport());
    return isLoaded && HCRapidJsonReadWriteUtils::FindObject(document.getRoot(), HSCPlazKey::catalog) != nullptr;
}

std::string HSCPlazFetchedFiles::take(const std::string& source, const std::string& area,
                                      const std::vector<std::string>& files) {
    for (const std::string& file : files) {
        const std::string dest = area + "/" + file;
        if (!HUTFile::mkDirRecursive(parentOf(dest)) || !copyWhole(source + "/" + file, dest)) return parentOf(dest);
    }
    return {};
}

bool HSCPlazFetchedFiles::place(const std::string& fetched, const std::string& file) {
    if (HUTFile::rename(fetched, file)) return true;
    if (!HUTFile::mkDirRecursive(parentOf(file))) return false;
    return HUTFile::rename(fetched, file) || copyWhole(fetched, file);
}
