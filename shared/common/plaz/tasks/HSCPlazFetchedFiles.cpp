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
        const bool isTaken =
            HUTFile::mkDirRecursive(parentOf(dest)) && copyWithoutRepository(source + "/" + file, dest);
        if (!isTaken) return parentOf(dest);
    }
    return {};
}

bool HSCPlazFetchedFiles::place(const std::string& fetched, const std::string& file) {
    return HUTFile::rename(fetched, file) || (HUTFile::mkDirRecursive(parentOf(file)) &&
                                              (HUTFile::rename(fetched, file) || copyWithoutRepository(fetched, file)));
}
