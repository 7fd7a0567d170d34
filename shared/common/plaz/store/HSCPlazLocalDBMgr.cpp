#include "plaz/store/HSCPlazLocalDBMgr.h"

#include "plaz/base/HSCPlazContext.h"
#include "plaz/base/HSCPlazDebugLog.h"
#include "plaz/base/HSCPlazKeptFile.h"
#include "plaz/base/HSCPlazLimits.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/reader/HSCPlazLocalDBReader.h"
#include "plaz/model/reader/HSCPlazLocalDBWriter.h"
#include "plaz/pref/HSCPlazPathMgr.h"
#include "plaz/store/HSCPlazInstalledItems.h"
#include "support/HIOStream.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"

namespace {

bool isBehindLink(const std::string& file) {
    return !HSCPlazStoreLayout::findLinkAbove(file).empty();
}

constexpr const char* saveName = "HSCPlazLocalDBMgr::save";

std::string chooseFile(const HSCPlaz* hub, const HSCPlazQStore& store, const std::string& given) {
    if (const std::string own = store.getLocalDbFilePath(); !own.empty()) return own;
    if (!given.empty()) return given;
    const std::string ofHub = hub ? hub->getLocalDBFilePath() : std::string();
    return ofHub.empty() ? HSCPlazContext::get().getDefaultDatabase() : ofHub;
}

/// What could not be read is not lost: it stays beside the new file, as a copy or, where it may not be copied, itself.
bool keepBeside(const std::string& file) {
    const std::string kept = HSCPlazKeptFile::nameFor(file);
    return !HUTFile::exists(file) || HUTFile::copyToRecursive(file, kept, HUTFile::copyOver) ||
           HUTFile::rename(file, kept);
}

} // namespace

HSCPlazLocalDBMgr::HSCPlazLocalDBMgr() : m_regressionMode(HUTEnv::getRegressMode()) {}

void HSCPlazLocalDBMgr::init(const std::string& file, HSCPlazModel* model) {
    if (HUTFile::isRegularFile(file)) HSCPlazLocalDBReader().parse(file, model);
}

void HSCPlazLocalDBMgr::load(HSCPlazModel* model, const std::string& file) {
    init(file, model);
}

void HSCPlazLocalDBMgr::read(const std::string& file, HSCPlazModel& model, HSCPlazReport& report) {
    if (!HUTFile::isRegularFile(file)) return;
    HSCPlazFindings found;
    const HSCPlazLocalDBReader::Result read = HSCPlazLocalDBReader::read(file, model, false, found);
    report.append(found.toReport());
    takeVersion(read.major, read.minor);
}

void HSCPlazLocalDBMgr::takeVersion(const std::string& major, const std::string& minor) {
    if (!major.empty()) m_major = major;
    if (!minor.empty()) m_minor = minor;
}

bool HSCPlazLocalDBMgr::save(HSCPlaz& hub, HSCPlazQStore* store, std::string file) {
    return save(&hub, store, std::move(file));
}

bool HSCPlazLocalDBMgr::save(HSCPlaz* hub, HSCPlazQStore* store, std::string file) {
    if (m_regressionMode) return true;
    if (!store) {
        HSCPlazDebugLog::within(saveName, " store object is null");
        return true;
    }
    file = chooseFile(hub, *store, file);
    const std::string unwritten = write(*store, file);
    if (!unwritten.empty()) ComMsgMgr::send(Msg::databaseNotSaved, MsgSeverity::error, unwritten);
    return unwritten.empty();
}

std::string HSCPlazLocalDBMgr::write(const HSCPlaz& hub, HSCPlazQStore& store) {
    return m_regressionMode ? std::string() : write(store, chooseFile(&hub, store, ""));
}

std::string HSCPlazLocalDBMgr::write(HSCPlazQStore& store, const std::string& file) {
    HSCPlazDebugLog::within(saveName, " Saving local db file of store ", store.getName());
    if (isUnreadable(file) || isBehindLink(file) || (m_damaged.count(file) != 0 && !keepBeside(file))) return file;
    m_damaged.erase(file);
    const bool isWritten = HSCPlazLocalDBWriter(m_major).write(file, store.getModel());
    m_stamps[file] = HUTFile::getStamp(file);
    return isWritten || !store.isProductSpecific() ? std::string() : file;
}

bool HSCPlazLocalDBMgr::isValidForProductAndRelease(const std::string& file) const {
    return m_regressionMode || HSCPlazLocalDBReader().checkIfValidForProductAndRelease(file);
}

std::shared_ptr<HSCPlazQStoreModel> HSCPlazLocalDBMgr::findRecord(const std::string& file,
                                                                  const std::string& store) const {
    HSCPlazModel recorded;
    HSCPlazFindings found;
    if (HUTFile::isRegularFile(file) && !isBehindLink(file))
        HSCPlazLocalDBReader::read(file, recorded, !m_regressionMode, found);
    for (const auto& record : recorded.getStores())
        if (record->getName() == store && !record->getItems().empty()) return record;
    return nullptr;
}

bool HSCPlazLocalDBMgr::isGone(const HSCPlazStoreLayout& layout) const {
    // A first installation that was cut short leaves the tree of one item at most.
    return !m_regressionMode && layout.findAreaLink().empty() && !HUTFile::exists(layout.getDatabase()) &&
           HUTFile::createFileIter(layout.getTreesDir()).size() > 1;
}

bool HSCPlazLocalDBMgr::hasChanged(const std::string& file) const {
    const auto known = m_stamps.find(file);
    return isUnreadable(file) || (known != m_stamps.end() && known->second != HUTFile::getStamp(file));
}

bool HSCPlazLocalDBMgr::canBeRead(const std::string& file) {
    std::string content;
    const HIOStream::Status status =
        isBehindLink(file) ? HIOStream::Status::unreadable
                           : HIOStream::read(file, content, HSCPlazLimits().getFileSize(HSCPlazLimits::File::list));
    const bool isReadable = status == HIOStream::Status::ok || status == HIOStream::Status::missing;
    if (!isReadable) m_unreadable.insert(file);
    return isReadable;
}

HSCPlazLocalDBMgr::Merge HSCPlazLocalDBMgr::merge(const std::string& file, HSCPlazQStoreModel& store,
                                                  const HSCPlazPathMgr& paths, HSCPlazReport& report) {
    using Outcome = HSCPlazLocalDBReader::Result::Outcome;
    m_unreadable.erase(file);
    if (isBehindLink(file)) {
        m_unreadable.insert(file);
        return Merge::unreadable;
    }
    const std::string stamp = m_stamps[file] = HUTFile::getStamp(file);
    if (stamp.empty() && canBeRead(file)) {
        if (!isGone(paths.getStoreLayout(store))) return Merge::nothing;
        m_hasLost = true;
        report.add(Msg::databaseGone, MsgSeverity::warning, file);
        return Merge::nothing;
    }
    HSCPlazModel recorded;
    HSCPlazFindings found;
    const HSCPlazLocalDBReader::Result read = HSCPlazLocalDBReader::read(file, recorded, !m_regressionMode, found);
    report.append(found.toReport());
    takeVersion(read.major, read.minor);
    if (read.outcome == Outcome::unreadable) {
        m_unreadable.insert(file);
        return Merge::unreadable;
    }
    if (read.outcome == Outcome::foreign) return Merge::foreign;
    if (read.outcome == Outcome::damaged) {
        m_damaged.insert(file);
        m_hasLost = true;
        report.add(Msg::databaseDamaged, MsgSeverity::warning, file, HSCPlazKeptFile::nameFor(file));
    }
    const HSCPlazQStoreModel* records = recorded.findStore(store.getName());
    const bool isDamaged = read.outcome == Outcome::damaged;
    if (!records && !recorded.getStores().empty()) return Merge::ofOtherStore;
    if (!records) return isDamaged ? Merge::damaged : Merge::nothing;
    if (store.getOwnBranch().empty()) store.setBranch(records->getOwnBranch());
    if (records->isUserRepository()) store.setIsUserRepository(true);
    std::vector<std::string> names;
    for (const auto& record : records->getItems()) names.push_back(record->getName());
    HSCPlazInstalledItems installed(store, paths, names);
    for (const auto& record : records->getItems()) {
        const std::string refusal = installed.apply(*record);
        if (refusal.empty()) continue;
        report.appendOneOfMany({Msg::itemRefused, MsgSeverity::criticalWarning, record->getName(), refusal},
                               "records in \"" + file + '"');
        m_damaged.insert(file); // so that the record outlives the next save
        m_hasLost = true;       // what it needs is not known
    }
    return isDamaged ? Merge::damaged : Merge::merged;
}
