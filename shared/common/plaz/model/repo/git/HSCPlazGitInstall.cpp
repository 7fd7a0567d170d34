#include "plaz/model/repo/git/HSCPlazGitInstall.h"

#include "plaz/base/HSCPlazFileCopy.h"
#include "plaz/base/HSCPlazMsg.h"
#include "plaz/base/HSCPlazTrustRules.h"
#include "plaz/model/HSCPlazQStoreModel.h"
#include "plaz/model/reader/HSCPlazJsonCheck.h"
#include "plaz/model/repo/git/HSCPlazGitCheckout.h"
#include "plaz/model/repo/git/HSCPlazGitHead.h"
#include "plaz/model/repo/git/HSCPlazGitRemoved.h"
#include "plaz/model/repo/git/HSCPlazGitTrace.h"
#include "plaz/model/repo/git/HSCPlazGitTree.h"
#include "plaz/model/repo/git/HSCPlazGitWorkingCopy.h"
#include "support/HIOStream.h"
#include "support/HUTFileTree.h"
#include "support/HUTFork.h"

#include <boost/filesystem/path.hpp>

#include <algorithm>
#include <sstream>

namespace fs = boost::filesystem;

using HSCPlazGitTrace::trace;
using HSCPlazGitWorkingCopy::Use;

namespace {

bool hasCommit(const std::string& dir, const std::string& commit) {
    return HSCPlazGitRunner::ask({"cat-file", "-e", commit + "^{commit}"}, dir).status == 0;
}

/// The first of the items whose commit a working copy lacks; null for none.
const HSCPlazQItemModel* findLacking(const std::string& dir, const std::vector<const HSCPlazQItemModel*>& items) {
    const auto found = std::find_if(items.begin(), items.end(),
                                    [&](const auto* item) { return !hasCommit(dir, item->getCommitId()); });
    return found == items.end() ? nullptr : *found;
}

/// One item on its way out of a repository.
class Fetch {
public:
    Fetch(const HSCPlazGitStore& store, const HSCPlazQItemModel& item, const HSCPlazGitInstall::Place& place,
          HSCPlazReport& report)
        : m_store(store), m_item(item), m_place(place), m_staging(store.layout.getStaging()), m_report(report) {}

    bool run() {
        if (!accept()) return false;
        const HSCPlazGitRemoved removed(m_staging);
        trace("qitem info:\n\titem root:", m_item.getRoot(), "\n\tstore path:", m_staging);
        trace("git info:\n\tstore path", m_staging, "\n\tstore remote", m_store.model.getUrl(), "\n\titem commit id",
              m_item.getCommitId());
        if (!checkOut()) return false;
        const std::string source = (fs::path(m_staging) / m_item.getRoot()).generic_string();
        if (!m_item.isListed() && !HUTFile::exists(source))
            return refuse("its commit " + m_item.getCommitId() + " has no folder \"" + m_item.getRoot() + "\"");
        verify(source);
        return takeIn(source) || tellNotWritable(m_place.incoming);
    }

    const std::string& getListing() const { return m_listing; }

private:
    bool refuse(const std::string& reason) {
        m_report.add(Msg::itemRefused, MsgSeverity::error, m_item.getName(), reason);
        return false;
    }
    bool tellNotWritable(const std::string& dir) {
        m_report.add(Msg::dirNotWritable, MsgSeverity::error, dir);
        return false;
    }

    bool accept() {
        namespace Rules = HSCPlazTrustRules;
        const std::string refusal = Rules::findRefusal(Rules::commitId, "commit_id", m_item.getCommitId());
        if (!refusal.empty()) return refuse(refusal);
        const std::string& metadataFile = m_item.getMetadataFile();
        if (!metadataFile.empty() && !HSCPlazTrust::isSafeRelativePath(metadataFile))
            return refuse("its metadata file \"" + metadataFile + "\" does not lie in its folder");
        if (m_place.directory.empty())
            return refuse("its folder \"" + m_item.getRoot() + "\" does not lie in the store's directory");
        return true;
    }

    // A working copy that is older than the catalog lacks the item's commit. Asking first would cost a process each
    // time, so the checkout itself tells; nobody hears of it, because the second one, after a fetch, has the last word.
    bool checkOut() {
        if (!HSCPlazGitWorkingCopy::stage(m_store, Use::asItIs, m_report)) return false;
        try {
            return checkOutCommit();
        } catch (const HSCPlazGitFailure& failure) { // also after a cancellation: the fetch then ends before it runs
            if (failure.hasMetLimit() || m_place.isLocal) throw;
        }
        if (isSuspect()) HSCPlazGitWorkingCopy::discardDamaged(m_store.layout);
        if (!HSCPlazGitWorkingCopy::stage(m_store, Use::fetched, m_report)) return false;
        if (hasCommit(m_staging, m_item.getCommitId()) || HUTFork::isInterrupted()) return checkOutCommit();
        m_report.add(Msg::commitGone, MsgSeverity::error, m_item.getName(), m_item.getCommitId());
        return false;
    }

    bool checkOutCommit() {
        HSCPlazGitCheckout::enableSparse(m_staging);
        if (!HSCPlazGitCheckout::writeSparseList(m_staging, {m_item.getRoot()})) return tellNotWritable(m_staging);
        HSCPlazGitCheckout::checkOut(m_staging, m_item.getCommitId());
        std::string index;
        if (HIOStream::read(m_staging + "/" + HSCPlazStoreLayout::gitDir + "/index", index) == HIOStatus::ok)
            m_listing = HSCPlazGitTree::listIndex(index, m_item.getRoot());
        requireFiles();
        return true;
    }

    // Git leaves out what it cannot read, and takes that for a success.
    void requireFiles() const {
        static constexpr const char* submodule = "160000 ";
        std::istringstream entries(m_listing);
        for (std::string entry; std::getline(entries, entry, '\0');) {
            const std::string path = entry.substr(entry.find('\t') + 1);
            if (entry.rfind(submodule, 0) == 0 || HUTFile::exists(m_staging + "/" + path)) continue;
            throw HSCPlazGitFailure(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::gitFailed),
                                    {Msg::contentMissing, MsgSeverity::error, m_item.getName(), path});
        }
    }

    // A working copy from which a commit that is there cannot be checked out, or which lacks one that it has fetched,
    // and can be made afresh.
    bool isSuspect() const {
        if (!m_store.hasRemote()) return false;
        const std::string index = m_store.layout.getIndex();
        const std::string branch = HSCPlazGitHead::findBranch(index, m_store.model.getBranch());
        const std::string fetched = HSCPlazGitHead::getCommit(index, branch);
        return hasCommit(index, m_item.getCommitId()) || (!fetched.empty() && !hasCommit(index, fetched));
    }

    void verify(const std::string& source) {
        if (!m_item.isListed()) return; // the catalog's word on its metadata file is not about this commit
        const std::string file = source + HUTFile::getDirSeparator() + m_item.getMetadataFile();
        if (HSCPlazJsonCheck::isWhole(file, HSCPlazLimits::File::item, m_report)) return;
        throw HEXAll(ComMsgMgrInstance(__FILE__, __LINE__, "common", Msg::fetchedItemInvalid, m_item.getName(), file));
    }

    // The staging directory goes anyway, so its files are moved where both places lie on one file system. What a copy
    // would leave out is left out. Nothing needs to be on the disk before the item takes its place.
    bool takeIn(const std::string& source) const {
        HSCPlazStoreLayout::unmark(source);
        const bool isMovable = HUTFile::isDirectory(source) && !HUTFileTree::isLink(source);
        return HUTFile::rmRecursive(m_place.incoming) && ((isMovable && HUTFile::rename(source, m_place.incoming)) ||
                                                          copyWithoutRepository(source, m_place.incoming));
    }

    const HSCPlazGitStore& m_store;
    const HSCPlazQItemModel& m_item;
    const HSCPlazGitInstall::Place& m_place;
    const std::string m_staging;
    std::string m_listing;
    HSCPlazReport& m_report;
};

} // namespace

HSCPlazGitOutcome HSCPlazGitInstall::check(const HSCPlazQItemModel& item) {
    return HSCPlazGitOutcome::of([&](HSCPlazReport& report) {
        if (!HSCPlazGitParams::isRemoteAccessEnabled()) {
            report.add(Msg::remoteAccessOff, MsgSeverity::error);
            return false;
        }
        trace(" got hub and qitem model");
        trace(" has remote access as well");
        trace(" dynamic cast done for qitem model - commit id ", item.getCommitId());
        if (!item.getCommitId().empty()) return true;
        trace("qitem commit id is empty can't install this qitem.");
        report.add(Msg::commitIdMissing, MsgSeverity::error, item.getName());
        return false;
    });
}

HSCPlazGitOutcome HSCPlazGitInstall::provide(const HSCPlazGitStore& store,
                                             const std::vector<const HSCPlazQItemModel*>& items) {
    return HSCPlazGitOutcome::of([&](HSCPlazReport& report) {
        const std::string index = store.layout.getIndex();
        if (HSCPlazStoreLayout::isComplete(index) && !findLacking(index, items)) return true;
        if (!HSCPlazGitParams::isRemoteAccessEnabled()) {
            report.add(Msg::remoteAccessOff, MsgSeverity::error);
            return false;
        }
        const HSCPlazGitRemoved removed(store.layout.getStaging());
        if (!HSCPlazGitWorkingCopy::stage(store, Use::fetched, report)) return false;
        const HSCPlazQItemModel* lacking = findLacking(store.layout.getStaging(), items);
        if (lacking) report.add(Msg::commitGone, MsgSeverity::error, lacking->getName(), lacking->getCommitId());
        return !lacking;
    });
}

HSCPlazGitInstall::Fetched HSCPlazGitInstall::fetch(const HSCPlazGitStore& store, const HSCPlazQItemModel& item,
                                                    const Place& place) {
    if (!place.isLocal)
        if (const HSCPlazGitOutcome checked = check(item); !checked.isDone) return {checked, {}};
    std::string listing;
    const auto outcome = HSCPlazGitOutcome::of([&](HSCPlazReport& report) {
        Fetch fetch(store, item, place, report);
        const bool isDone = fetch.run();
        listing = fetch.getListing();
        return isDone;
    });
    return {outcome, listing};
}

HSCPlazGitOutcome HSCPlazGitInstall::install(const HSCPlazGitStore& store, const HSCPlazQItemModel& item,
                                             const Place& place) {
    const HSCPlazGitRemoved incoming(place.incoming);
    HSCPlazGitOutcome fetched = fetch(store, item, place).outcome;
    if (!fetched.isDone) return fetched;
    trace("copying qitem.\n source: ", place.incoming, "\n destination: ", place.directory);
    // The folder of an item without a revision holds those of its revisions, which must not go with the old files.
    const bool isShared = store.model.isMultiRevisionSupported() && item.getRevision().empty();
    fetched.isDone = isShared ? copyWithoutRepository(place.incoming, place.directory)
                              : HUTFile::replaceDirectory(place.incoming, place.directory);
    if (!fetched.isDone) fetched.report.add(Msg::dirNotWritable, MsgSeverity::error, place.directory);
    return fetched;
}
