#include "plaz/store/HSCPlazLocalDBMgr.h"

#include "plaz/HSCPlazMgr.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazLogger.h"
#include "plaz/model/HSCPlazModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/model/reader/HSCPlazLocalDBReader.h"
#include "plaz/model/reader/HSCPlazLocalDBWriter.h"
#include "plaz/pref/HSCPlazPathMgr.h"
#include "plaz/store/HSCPlazInstalledItems.h"
#include "support/HUTEnv.h"
#include "support/HUTFile.h"

namespace {

constexpr const char* saveName = "HSCPlazLocalDBMgr::save";

std::string chooseFile(const HSCPlaz* hub, const HSCPlazQStore& store, const std::string& given) {
    if (const std::string own = store.getLocalDbFilePath(); !own.empty()) return own;
    if (!given.empty()) return given;
    const std::string ofHub = hub ? hub->getLocalDBFilePath() : std::string();
    return ofHub.empty() ? HSCPlazMgr::getInstance().getPathMgr()->getDefaultLocalDbFile() : ofHub;
}

} // namespace

HSCPlazLocalDBMgr::HSCPlazLocalDBMgr() : m_regressionMode(HUTEnv::getRegressMode()) {}

void HSCPlazLocalDBMgr::init(const std::string& file, HSCPlazModel* model) {
    if (HUTFile::isRegularFile(file)) HSCPlazLocalDBReader().parse(file, model);
}

void HSCPlazLocalDBMgr::load(HSCPlazModel* model, const std::string& file) {
    init(file, model);
}

bool HSCPlazLocalDBMgr::save(HSCPlaz& hub, HSCPlazQStore* store, std::string file) {
    return save(&hub, store, std::move(file));
}

bool HSCPlazLocalDBMgr::save(HSCPlaz* hub, HSCPlazQStore* store, std::string file) {
    if (m_regressionMode) return true;
    if (!store) {
        HSCPlazLogger::within(saveName, " store object is null");
        return true;
    }
    file = chooseFile(hub, *store, file);
    HSCPlazLogger::within(saveName, " Saving local db file of store ", store->getName());
    // What could not be read is not lost: it stays beside the new file.
    if (m_damaged.erase(file) != 0) HUTFile::copyToRecursive(file, file + ".bad", HUTFile::copyOver);
    const bool isWritten = HSCPlazLocalDBWriter().write(file, store->getModel());
    m_stamps[file] = HUTFile::getStamp(file);
    if (isWritten || !store->isProductSpecific()) return true;
    ComMsgMgr::send(Msg::databaseNotSaved, MsgSeverity::error, file);
    return false;
}

bool HSCPlazLocalDBMgr::isValidForProductAndRelease(const std::string& file) const {
    return m_regressionMode || HSCPlazLocalDBReader().checkIfValidForProductAndRelease(file);
}

bool HSCPlazLocalDBMgr::hasChanged(const std::string& file) const {
    const auto known = m_stamps.find(file);
    return known != m_stamps.end() && known->second != HUTFile::getStamp(file);
}

HSCPlazLocalDBMgr::Merge HSCPlazLocalDBMgr::merge(const std::string& file, HSCPlazQStoreModel& store) {
    const std::string stamp = m_stamps[file] = HUTFile::getStamp(file);
    if (stamp.empty()) return Merge::nothing;
    HSCPlazModel recorded;
    HSCPlazLocalDBReader reader;
    using Outcome = HSCPlazLocalDBReader::Outcome;
    const Outcome outcome = m_regressionMode ? (reader.parse(file, &recorded) ? Outcome::read : Outcome::damaged)
                                             : reader.parseIfValid(file, &recorded);
    if (outcome == Outcome::foreign) return Merge::foreign;
    if (outcome == Outcome::damaged) {
        m_damaged.insert(file);
        return Merge::damaged;
    }
    const HSCPlazQStoreModel* records = recorded.findStore(store.getName());
    if (!records) return Merge::nothing;
    HSCPlazInstalledItems installed(store);
    for (const auto& record : records->getItems())
        if (!installed.apply(*record)) m_damaged.insert(file); // so that the record outlives the next save
    return Merge::merged;
}
