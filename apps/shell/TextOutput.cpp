#include "TextOutput.h"

#include "HubParams.h"
#include "HubQueries.h"
#include "ItemReasons.h"
#include "ItemReference.h"
#include "StoreSummary.h"
#include "TextTable.h"
#include "UserHub.h"

#include "plaz/base/HSCPlazTrust.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQItemModel.h"
#include "plaz/model/HSCPlazQStore.h"
#include "plaz/tasks/HSCPlazPlan.h"
#include "support/HUTText.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/trim.hpp>

#include <algorithm>
#include <iomanip>
#include <iterator>
#include <map>
#include <ostream>
#include <sstream>

namespace {

constexpr std::size_t shownCommit = 12; ///< characters of a commit's id that people see

std::string join(const std::vector<std::string>& texts) {
    std::string joined;
    for (const std::string& text : texts) joined += (joined.empty() ? "" : ", ") + text;
    return joined;
}

/// The first text that is not empty.
std::string firstOf(const std::string& text, const std::string& otherwise) {
    return text.empty() ? otherwise : text;
}

/// Whether what is installed of it is there for other items alone.
bool isDependency(const HSCPlazQItem* item) {
    return !item->IsInstalled() || item->getMode() == HSCPlazInstallationMode::tool;
}

/// Whether the item has revisions installed that no line of the listing shows.
bool hidesRevisions(const ListedItem& listed) {
    return !listed.item->IsInstalled() || (listed.standsForAll && listed.installedRevisions.size() > 1);
}

/// "outdated", "installed" or "dependency", and which revisions where these are others than the one shown.
std::string installationOf(const ListedItem& listed) {
    if (listed.installedRevisions.empty()) return {};
    const HSCPlazQItem& item = *listed.item;
    const auto revisions =
        item.IsInstalled() ? std::vector<HSCPlazQItem*>{listed.item} : item.getStore()->getItems(item.getName());
    const bool isNeededOnly = std::all_of(revisions.begin(), revisions.end(), isDependency);
    const std::string state = listed.isOutdated ? "outdated" : isNeededOnly ? "dependency" : "installed";
    return hidesRevisions(listed) ? state + " (" + join(listed.installedRevisions) + ")" : state;
}

/// The same, and whether the user holds the item there, or it is inactive.
std::string stateOf(const ListedItem& listed) {
    const std::string installation = installationOf(listed) + (listed.isHeld ? ", held" : "");
    if (!listed.item->isInactive()) return installation;
    return installation.empty() ? "inactive" : installation + ", inactive";
}

/// What an update would bring; "again" where that revision was published anew.
std::string offerOf(const ListedItem& listed) {
    return listed.offered + (listed.offered == listed.item->getRevision() ? " again" : "");
}

/// Where a store's catalog comes from.
std::string sourceOf(const HSCPlazQStore& store) {
    if (!HubQueries::isListed(store)) return "(no longer offered; what is installed stays)";
    return HSCPlazTrust::maskSecrets(store.getUrl());
}

void addField(TextTable& table, const std::string& name, const std::string& value) {
    if (!value.empty()) table.addRow({name, value});
}

/// Of an update, the revision before it.
std::string formerOf(const std::string& revision, bool isKept) {
    return " (was " + revision + (isKept ? ", which stays)" : ")");
}

std::string whatOf(const HSCPlazPlannedStep& step) {
    const std::string what = ItemReference{step.store, step.name, step.revision}.toText();
    if (!step.formerRevision.empty()) return what + formerOf(step.formerRevision, true);
    if (step.previousRevision.empty()) return what;
    const bool isSame = step.previousRevision == step.revision;
    const std::string was = isSame ? step.previousCommit.substr(0, shownCommit) : step.previousRevision;
    return what + (isSame ? " " + step.commit.substr(0, shownCommit) : "") + " (was " + was + ")";
}

/// As the result of the update calls it.
const char* wordOf(const HSCPlazPlannedStep& step) {
    return HSCPlazPlannedStep::nameOf(step.formerRevision.empty() ? step.kind : HSCPlazPlannedStep::Kind::update);
}

/// Without empty lines around it.
std::string textOf(const std::string& changes) {
    return boost::algorithm::trim_right_copy(
        boost::algorithm::trim_left_copy_if(changes, boost::algorithm::is_any_of("\r\n")));
}

std::string shownSize(std::uint64_t bytes) {
    static constexpr const char* units[] = {"B", "kB", "MB", "GB", "TB"};
    std::size_t unit = 0;
    auto number = static_cast<double>(bytes);
    for (; number >= 1000 && unit + 1 < std::size(units); ++unit) number /= 1000;
    std::ostringstream text;
    text << std::fixed << std::setprecision(unit == 0 || number >= 100 ? 0 : 1) << number << ' ' << units[unit];
    return text.str();
}

std::string counted(std::size_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string sizeOf(const HSCPlazPlannedStep& step) {
    if (step.size) return shownSize(*step.size);
    return step.isComing() ? "to be fetched" : "";
}

} // namespace

void TextOutput::showStores(const std::vector<HSCPlazQStore*>& stores) {
    TextTable table({"STORE", "TYPE", "ITEMS", "INSTALLED", "DISPLAY NAME", "URL"});
    for (const HSCPlazQStore* store : stores) {
        const StoreSummary summary = StoreSummary::of(*store);
        table.addRow({store->getName(), store->getStoreType(), std::to_string(summary.items),
                      std::to_string(summary.installed), store->getDisplayName(), sourceOf(*store)});
    }
    table.print(m_out);
}

void TextOutput::showItems(const std::vector<ListedItem>& items) {
    const bool isOffered =
        std::any_of(items.begin(), items.end(), [](const ListedItem& listed) { return !listed.offered.empty(); });
    std::vector<std::string> header{"STORE", "ITEM", "REVISION", "STATE", "DISPLAY NAME"};
    if (isOffered) header.insert(header.begin() + 3, "OFFERED");
    TextTable table(header);
    for (const ListedItem& listed : items) {
        const HSCPlazQItem& item = *listed.item;
        std::vector<std::string> row{item.getStoreName(), item.getName(), item.getRevision(), stateOf(listed),
                                     item.getDisplayName()};
        if (isOffered) row.insert(row.begin() + 3, listed.offered.empty() ? "" : offerOf(listed));
        table.addRow(row);
    }
    table.print(m_out);
}

void TextOutput::showCategories(const std::vector<ListedCategory>& categories) {
    TextTable table({"STORE", "CATEGORY", "BELOW", "ITEMS", "DISPLAY NAME", "DESCRIPTION"});
    for (const ListedCategory& category : categories)
        table.addRow({category.store, category.name, category.parent, std::to_string(category.items),
                      category.displayName, category.description});
    table.print(m_out);
}

void TextOutput::showItem(const ItemInfo& info) {
    showDescription(info);
    showRelations(info);
    showRevisions(*info.listed.item);
    m_out << "\nHistory\n" << HUTText::printable(info.history, true);
    if (!info.history.empty() && info.history.back() != '\n') m_out << '\n';
}

void TextOutput::showDescription(const ItemInfo& info) {
    const HSCPlazQItem& item = *info.listed.item;
    const HSCPlazQItemModel& model = *item.getModel();
    const bool isInstalled = item.IsInstalled();
    TextTable table({});
    addField(table, "Item", ItemReference::of(item).toText());
    addField(table, "Name", item.getDisplayName());
    addField(table, "Description", item.getDescription());
    addField(table, "Company", firstOf(item.getCompanyDisplayName(), item.getCompany()));
    addField(table, "Author", item.getAuthor());
    addField(table, "Category", model.getCategory());
    addField(table, "Categories", join(item.getCategories()));
    addField(table, "Keywords", join(item.getItemSearchKeywords()));
    addField(table, "Latest", item.getLatestRevision());
    addField(table, "Commit", item.getCommitId());
    addField(table, "State", firstOf(stateOf(info.listed), "not installed"));
    addField(table, "Mode", isInstalled ? item.getInstallationMode() : "");
    addField(table, "References", isInstalled ? std::to_string(item.getReferenceCount()) : "");
    addField(table, "Directory", isInstalled ? item.getLocalRootDir() : "");
    addField(table, "Files of",
             isInstalled && model.getInstalledCommitId() != item.getCommitId() ? model.getInstalledCommitId() : "");
    addField(table, "Offered", item.isActive() ? "yes" : "no");
    addField(table, "Logo", HSCPlazTrust::maskSecrets(info.logo));
    addField(table, "Page", HSCPlazTrust::maskSecrets(info.page));
    addField(table, "Web site", item.getWebsite());
    table.print(m_out);
}

void TextOutput::showRelations(const ItemInfo& info) {
    if (!info.needs.empty()) m_out << "\nNeeds\n";
    TextTable needs({});
    for (const NeededItem& needed : info.needs) {
        const HSCPlazQItemDependency& dependency = *needed.dependency;
        needs.addRow(
            {"  " + ItemReference{dependency.getStore(), dependency.getItem(), dependency.getRevision()}.toText(),
             needed.isInstalled ? "installed" : "not installed"});
    }
    needs.print(m_out);
    if (!info.neededBy.empty()) m_out << "\nNeeded by\n";
    TextTable neededBy({});
    for (const HSCPlazQItem* item : info.neededBy) neededBy.addRow({"  " + ItemReference::of(*item).toText()});
    neededBy.print(m_out);
}

void TextOutput::showRevisions(const HSCPlazQItem& item) {
    const std::vector<HSCPlazRevisionModel>& revisions = item.getModel()->getRevisions();
    if (!revisions.empty()) m_out << "\nRevisions\n";
    TextTable table({});
    for (const HSCPlazRevisionModel& revision : revisions)
        table.addRow({"  " + revision.revision, revision.commitId.substr(0, shownCommit), revision.history});
    table.print(m_out);
}

void TextOutput::showActions(const std::vector<HSCPlazItemResult>& results) {
    if (m_quiet) return;
    TextTable table({});
    for (const HSCPlazItemResult& result : results) {
        std::string what = ItemReference{result.store, result.name, result.revision}.toText();
        if (!result.previousRevision.empty() && result.previousRevision != result.revision)
            what += formerOf(result.previousRevision, result.isPreviousKept);
        if (!result.neededBy.empty()) what += " (needed by " + result.neededBy + ")";
        table.addRow({HSCPlazItemResult::nameOf(result.outcome), what, result.directory});
    }
    printPainted(table);
}

void TextOutput::showPlan(const std::vector<HSCPlazPlannedStep>& steps) {
    if (steps.empty()) return;
    TextTable table({});
    std::uint64_t coming = 0, going = 0;
    for (const HSCPlazPlannedStep& step : steps) {
        (step.isComing() ? coming : going) += step.size.value_or(0);
        table.addRow(
            {wordOf(step), whatOf(step), step.describeWhy(), sizeOf(step), step.url.empty() ? "" : "from " + step.url});
    }
    table.print(m_out);
    for (const HSCPlazPlannedStep& step : steps)
        if (const std::string changes = textOf(step.changes); !changes.empty())
            m_out << "\nChanges of " << HUTText::printable(whatOf(step)) << '\n'
                  << HUTText::printable(changes, true) << '\n';
    const auto count = [&](bool isComing) {
        return std::count_if(steps.begin(), steps.end(), [&](const HSCPlazPlannedStep& step) {
            return isComing ? step.isComing() : step.kind == HSCPlazPlannedStep::Kind::remove;
        });
    };
    m_out << '\n'
          << count(true) << " to come, " << shownSize(coming) << "; " << count(false) << " to go, " << shownSize(going)
          << '\n';
}

void TextOutput::showReason(const ItemReason& reason) {
    for (const std::string& sentence : reason.describe()) m_out << HUTText::printable(sentence) << '\n';
}

void TextOutput::showFiles(const std::vector<HSCPlazFilesResult>& results) {
    TextTable table({});
    for (const HSCPlazFilesResult& result : results) {
        if (m_quiet && result.isDone()) continue;
        table.addRow({HSCPlazFilesResult::nameOf(result.outcome),
                      ItemReference{result.store, result.name, result.revision}.toText(), result.directory});
        for (const auto& [state, files] : result.list())
            for (const std::string& file : *files) table.addRow({"", std::string(state) + " " + file, ""});
    }
    printPainted(table);
}

void TextOutput::showStoreResults(const std::vector<HSCPlazStoreResult>& results) {
    if (m_quiet) return;
    TextTable table({});
    for (const HSCPlazStoreResult& result : results)
        table.addRow({HSCPlazStoreResult::nameOf(result.outcome), result.store,
                      result.outcome == HSCPlazStoreResult::Outcome::added ? "" : counted(result.items, "item"),
                      result.directory});
    printPainted(table);
    for (const HSCPlazStoreResult& result : results) showChanges(result);
}

void TextOutput::showChanges(const HSCPlazStoreResult& result) {
    const HSCPlazCatalogChanges& changes = result.changes;
    const std::string store = HUTText::printable(result.store);
    if (!changes.url.empty()) m_out << '\n' << store << " from " << HUTText::printable(changes.url) << '\n';
    if (changes.commit == changes.previousCommit && changes.items.empty()) return;
    m_out << '\n'
          << store << ' ' << changes.previousCommit.substr(0, shownCommit)
          << (changes.previousCommit.empty() ? "" : "..") << changes.commit.substr(0, shownCommit) << '\n';
    TextTable table({});
    for (const HSCPlazCatalogChanges::Item& item : changes.items) {
        std::string what = ItemReference{result.store, item.name, item.revision}.toText();
        if (item.previousRevision != item.revision && !item.previousRevision.empty())
            what += " (was " + item.previousRevision + ")";
        table.addRow({"", HSCPlazCatalogChanges::nameOf(item.kind), what, item.isInstalled ? "installed" : ""});
    }
    table.print(m_out);
    for (const std::string& subject : changes.subjects) m_out << "  * " << HUTText::printable(subject) << '\n';
}

void TextOutput::showHistory(const std::vector<HSCPlazHistoryEntry>& entries) {
    TextTable table({});
    for (const HSCPlazHistoryEntry& entry : entries) {
        std::string time = entry.time.substr(0, sizeof "2026-11-28T08:01" - 1);
        std::replace(time.begin(), time.end(), 'T', ' ');
        const std::string command =
            entry.command.empty() ? "(interrupted, or changed by something else)" : entry.command;
        table.addRow({std::to_string(entry.number), time,
                      command + (entry.isPart ? " (in part)" : "") + (entry.isTakenBack ? " (taken back)" : "")});
        for (const HSCPlazRecordedChange& change : entry.changes)
            table.addRow({"", "", "  " + change.item.toText() + " " + change.describe()});
    }
    table.print(m_out);
}

void TextOutput::showPaths(const std::vector<HSCPlazPathsInForce::Path>& hub,
                           const std::vector<HSCPlazPathsInForce::StorePaths>& stores) {
    showPathList(hub);
    for (const HSCPlazPathsInForce::StorePaths& store : stores) {
        m_out << "\nStore " << HUTText::printable(store.store) << '\n';
        showPathList(store.paths);
    }
}

void TextOutput::showPathList(const std::vector<HSCPlazPathsInForce::Path>& paths) {
    TextTable table({});
    for (const HSCPlazPathsInForce::Path& path : paths)
        table.addRow({path.name, path.path.empty() ? "-" : path.path + (path.exists ? "" : " (missing)"), path.chosen});
    table.print(m_out);
}

void TextOutput::showHub(const HubInForce& hub) {
    TextTable about({});
    about.addRow({"Hub:", hub.url.empty() ? "not known" : hub.url + " (" + hub.chooser + ")"});
    about.addRow({"Metadata:", hub.metadata + (hub.isRefreshed ? " (refreshed)" : " (shipped)")});
    about.print(m_out);
    if (hub.stores.empty()) return;
    m_out << '\n';
    TextTable stores({"STORE", "OF", "URL"});
    for (const HSCPlazQStore* store : hub.stores)
        stores.addRow({store->getName(), HubInForce::ownerOf(*store), sourceOf(*store)});
    for (const std::string& name : hub.hidden) stores.addRow({name, "yours, not used", ""});
    stores.print(m_out);
}

void TextOutput::showSetting(const HPAParam& /*param*/) {}

void TextOutput::showParams(const std::vector<const HPAParam*>& params) {
    tabulate(params).print(m_out);
}

void TextOutput::showFindings(const std::vector<Finding>& findings) {
    std::map<Finding::State, int> counts;
    TextTable table({});
    for (const Finding& finding : findings) {
        ++counts[finding.state];
        if (m_quiet && finding.state == Finding::State::ok) continue;
        table.addRow({Finding::nameOf(finding.state), finding.subject, finding.found});
        if (!finding.advice.empty()) table.addRow({"", "", "-> " + finding.advice});
    }
    printPainted(table);
    m_out << findings.size() << " checks: " << counts[Finding::State::ok] << " ok, " << counts[Finding::State::warning]
          << " with a warning, " << counts[Finding::State::problem] << " with a problem\n";
}

void TextOutput::showChecks(const std::vector<HSCPlazFileCheck>& checks) {
    for (const HSCPlazFileCheck& check : checks) {
        m_out << HUTText::printable(check.file) << ": " << (check.isValid() ? "valid" : "not valid");
        if (!check.kind.empty()) m_out << " (" << check.kind << ")";
        m_out << '\n';
        for (const std::string& finding : check.findings) m_out << "  " << HUTText::printable(finding) << '\n';
    }
}

void TextOutput::printPainted(const TextTable& table) {
    table.print(m_out, [this](const std::string& word) { return m_colours.paint(word); });
}

void TextOutput::showText(const std::string&, const std::string& text) {
    m_out << text << '\n';
}

bool TextOutput::finish(const std::string&, const std::vector<ComMsgMgr::Message>&) {
    m_out.flush();
    return static_cast<bool>(m_out);
}
