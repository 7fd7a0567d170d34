#include "plaz/tasks/HSCPlazFetchedFiles.h"

#include "plaz/base/HSCPlazFileCopy.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/reader/HSCPlazJsonCheck.h"
#include "plaz/model/reader/HSCPlazJsonDocument.h"
#include "plaz/model/reader/HSCPlazMetadataKeys.h"
#include "plaz/model/reader/HSCPlazQItemCatalogReader.h"
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

/// What an earlier catalog has left may be a folder where there is a file now, or the other way around.
void clearWay(const std::string& file) {
    std::string obstacle = file;
    while (!HUTFile::exists(obstacle)) obstacle = parentOf(obstacle);
    if (obstacle == file || HUTFile::isRegularFile(obstacle)) HUTFile::rmRecursive(obstacle);
}

} // namespace

bool HSCPlazFetchedFiles::isCatalog(const std::string& file, HSCPlazReport& problem) {
    if (!HSCPlazJsonCheck::isWhole(file, HSCPlazLimits::File::list, problem)) return false;
    HSCPlazFindings found;
    HSCPlazJsonDocument document;
    const bool isLoaded = document.load(file, found);
    const std::string excess = HSCPlazQItemCatalogReader::findExcess(document.getRoot(), document.getLimits());
    if (!excess.empty()) found.add(HSCPlazFinding::Kind::beyondLimit, file, excess);
    problem.append(found.toReport());
    return isLoaded && excess.empty() &&
           HCRapidJsonReadWriteUtils::FindObject(document.getRoot(), HSCPlazKey::catalog) != nullptr;
}

void HSCPlazFetchedFiles::requireWithinLimits(const HSCPlazReport& problem) {
    if (problem.tells(Msg::limitExceeded)) throw HEXAll(problem.getNotes().front().message);
}

std::string HSCPlazFetchedFiles::take(const std::string& source, const std::string& area,
                                      const std::vector<std::string>& files) {
    for (const std::string& file : files) {
        const std::string dest = area + "/" + file;
        if (!HUTFile::mkDirRecursive(parentOf(dest)) || !copyWhole(source + "/" + file, dest)) return parentOf(dest);
    }
    return {};
}

std::string HSCPlazFetchedFiles::prepare(const std::string& source, const std::string& incoming,
                                         const std::vector<std::string>& files) {
    bool arePrepared = HUTFile::rmRecursive(incoming) && HUTFile::mkDirRecursive(incoming);
    for (std::size_t number = 0; arePrepared && number < files.size(); ++number)
        arePrepared = copyWithoutRepository(source + "/" + files[number], incoming + "/" + std::to_string(number));
    return arePrepared && HUTFile::flush(incoming) ? std::string() : incoming;
}

std::string HSCPlazFetchedFiles::moveIn(const HSCPlazStoreLayout& layout, const std::vector<std::string>& files) {
    const std::string incoming = layout.getIncoming();
    for (std::size_t number = 0; number < files.size(); ++number) {
        const std::string fresh = incoming + "/" + std::to_string(number),
                          file = layout.getArea() + "/" + files[number];
        if (!HUTFile::exists(fresh)) continue;
        if (!HUTFile::mkDirRecursive(parentOf(file)) || !HUTFile::rename(fresh, file) || !HUTFile::flush(file))
            return parentOf(file);
    }
    return {};
}

bool HSCPlazFetchedFiles::place(const std::string& fetched, const std::string& file) {
    if (HUTFile::rename(fetched, file)) return true;
    clearWay(file);
    if (!HUTFile::mkDirRecursive(parentOf(file))) return false;
    return HUTFile::rename(fetched, file) || copyWhole(fetched, file);
}
