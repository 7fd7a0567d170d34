#include "plaz/store/HSCPlazHistory.h"

#include "plaz/base/HSCPlazMsg.h"
#include "support/HIOStream.h"
#include "support/HUTFile.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

using Change = HSCPlazRecordedChange;
using Changes = std::vector<Change>;
using Entry = HSCPlazHistoryEntry;

/// The time here, with its distance from the world's: not every system's own formatting knows that.
std::string now() {
    const std::time_t time = std::time(nullptr);
    const std::tm local = *std::localtime(&time);
    std::tm world = *std::gmtime(&time);
    world.tm_isdst = local.tm_isdst;
    const int minutes = static_cast<int>(std::difftime(time, std::mktime(&world)) / 60);
    char zone[32], text[sizeof "2026-11-28T08:01:56"];
    std::snprintf(zone, sizeof zone, "%c%02d%02d", minutes < 0 ? '-' : '+', std::abs(minutes) / 60,
                  std::abs(minutes) % 60);
    return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &local)) + zone;
}

bool isOneOf(const HSCPlazRevisionName& item, const Changes& changes) {
    return std::any_of(changes.begin(), changes.end(), [&](const Change& one) { return one.item.isOfSameItem(item); });
}

/// What two changes in a row come to.
void append(Changes& changes, Change next) {
    const auto known = std::find_if(changes.begin(), changes.end(), [&](const Change& one) {
        return !(one.item < next.item) && !(next.item < one.item);
    });
    if (known == changes.end())
        changes.push_back(std::move(next));
    else if (known->before == next.after)
        changes.erase(known);
    else
        known->after = std::move(next.after);
}

void compareItems(const HSCPlazStoreFacts& before, const HSCPlazStoreFacts& after, Changes& changes) {
    for (const auto& [item, fact] : before.items)
        if (const auto now = after.items.find(item); now == after.items.end())
            changes.push_back({item, fact, std::nullopt});
        else if (!(now->second == fact))
            changes.push_back({item, fact, now->second});
    for (const auto& [item, fact] : after.items)
        if (before.items.count(item) == 0) changes.push_back({item, std::nullopt, fact});
}

} // namespace

Changes HSCPlazHistory::compare(const HSCPlazInstalledFacts& before, const HSCPlazInstalledFacts& after) {
    Changes changes;
    for (const auto& [name, store] : after) {
        const auto known = before.find(name);
        if (known == before.end()) continue;
        if (known->second.area == store.area || known->second.area.empty()) compareItems(known->second, store, changes);
    }
    return changes;
}

const std::vector<Entry>& HSCPlazHistory::read(HSCPlazReport& problem) {
    if (!m_damage.empty() || m_stamp != HUTFile::getStamp(m_file)) readFile();
    if (!m_damage.empty()) problem.add(Msg::historyUnknown, MsgSeverity::warning, m_file, m_damage);
    return m_content.entries;
}

void HSCPlazHistory::readWithUnrecorded(const HSCPlazInstalledFacts& now, HSCPlazReport& problem) {
    read(problem);
    if (!m_damage.empty() || !m_content.isKnown) return;
    addUnrecorded(m_content, now, now);
    m_undone = findUndone(m_content.entries);
}

void HSCPlazHistory::readFile() {
    m_stamp = HUTFile::getStamp(m_file);
    m_content = {};
    m_undone.clear();
    m_damage.clear();
    std::string text;
    const HIOStream::Status status = HIOStream::read(m_file, text);
    if (status == HIOStream::Status::missing) return;
    if (status != HIOStream::Status::ok) {
        m_damage = "it cannot be read";
        return;
    }
    if (auto content = HSCPlazHistoryFile::parse(std::move(text), m_damage)) m_content = std::move(*content);
    m_undone = findUndone(m_content.entries);
}

bool HSCPlazHistory::beginCommand(const std::string& text) {
    if (!m_command.text.empty()) return false;
    m_command = {text};
    return true;
}

bool HSCPlazHistory::beginUndo(int number, const HSCPlazInstalledFacts& now) {
    Content content = m_content;
    addUnrecorded(content, now, now);
    Command undo = m_command;
    undo.undone = number;
    undo.text = "undo " + std::to_string(number);
    content.pending = undo;
    if (!write(std::move(content))) return false; // then it is none, of which the task's end would have to tell
    m_command = undo;
    return true;
}

int HSCPlazHistory::add(Content& content, const Command& command, Changes changes) {
    const bool isPart = command.undone != 0 && !command.isWhole;
    if (changes.empty() && (command.undone == 0 || isPart)) return command.entry;
    if (command.entry == 0 || content.entries.empty() || content.entries.back().number != command.entry)
        content.entries.push_back({++content.last, now(), command.text, command.undone, isPart, {}});
    for (Change& change : changes) append(content.entries.back().changes, std::move(change));
    return content.last;
}

void HSCPlazHistory::addUnrecorded(Content& content, const HSCPlazInstalledFacts& first,
                                   const HSCPlazInstalledFacts& now) {
    Changes changes = compare(content.isKnown ? content.installed : first, now);
    if (!changes.empty()) add(content, content.pending, std::move(changes));
    content.pending = {};
    for (const auto& [name, store] : now) content.installed[name] = store;
}

void HSCPlazHistory::trim(Content& content) {
    std::size_t changes = 0, kept = 0;
    for (auto entry = content.entries.rbegin(); entry != content.entries.rend() && kept < mostEntries; ++entry, ++kept)
        if ((changes += entry->changes.size()) > mostChanges && kept > 0) break;
    content.entries.erase(content.entries.begin(), content.entries.end() - static_cast<std::ptrdiff_t>(kept));
}

void HSCPlazHistory::record(const HSCPlazInstalledFacts& first, const HSCPlazInstalledFacts& before,
                            const HSCPlazInstalledFacts& after, HSCPlazReport& problem) {
    const bool isUndo = m_command.undone != 0;
    if (first == after && before == after && !isUndo) return;
    read(problem);
    if (!m_damage.empty()) return;
    Content content = m_content;
    // Who only brings another one to its end does that one's work.
    Command finished = m_content.pending;
    Command& command = m_command.text.empty() && finished.undone != 0 ? finished : m_command;
    addUnrecorded(content, first, before);
    command.entry = add(content, command, compare(before, after));
    for (const auto& [name, store] : after) content.installed[name] = store;
    trim(content);
    if (!write(std::move(content))) problem.add(Msg::historyNotSaved, MsgSeverity::warning, m_file);
}

bool HSCPlazHistory::write(Content content) {
    if (!HUTFile::writeAtomically(m_file, HSCPlazHistoryFile::toText(content))) return false;
    m_stamp = HUTFile::getStamp(m_file);
    m_content = std::move(content);
    m_content.isKnown = true;
    m_undone = findUndone(m_content.entries);
    return true;
}

bool HSCPlazHistory::wasHeld(const HSCPlazRevisionName& item) const {
    const auto store = m_content.installed.find(item.store);
    if (store == m_content.installed.end()) return false;
    const auto fact = store->second.items.find(item);
    return fact != store->second.items.end() && fact->second.isHeld;
}

const Entry* HSCPlazHistory::find(int number) const {
    const auto& entries = m_content.entries;
    const auto found =
        std::find_if(entries.begin(), entries.end(), [&](const Entry& entry) { return entry.number == number; });
    return found == entries.end() ? nullptr : &*found;
}

std::set<int> HSCPlazHistory::findUndone(const std::vector<Entry>& entries) {
    std::set<int> undone; // what takes an entry back stands behind it
    for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry)
        if (entry->undone != 0 && !entry->isPart && undone.count(entry->number) == 0) undone.insert(entry->undone);
    return undone;
}

const Entry* HSCPlazHistory::findNewest() const {
    const auto& entries = m_content.entries;
    const auto found = std::find_if(entries.rbegin(), entries.rend(),
                                    [&](const Entry& entry) { return entry.undone == 0 && !isUndone(entry.number); });
    return found == entries.rend() ? nullptr : &*found;
}

std::vector<const Entry*> HSCPlazHistory::findLater(const Entry& entry) const {
    std::vector<const Entry*> later;
    for (const Entry& other : m_content.entries) {
        // One that was taken back, and what took it back, are as if they had not been; so is a part of this very undo.
        const bool isCancelled = isUndone(other.number) || other.undone >= entry.number;
        const auto touches = [&](const Change& change) { return isOneOf(change.item, entry.changes); };
        if (other.number > entry.number && !isCancelled &&
            std::any_of(other.changes.begin(), other.changes.end(), touches))
            later.push_back(&other);
    }
    return later;
}
