#include "Categories.h"
#include "HubParams.h"
#include "Program.h"

#include "plaz/HSCPlazInspection.h"
#include "plaz/HSCPlazMgr.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/ComMsgMgr.h"
#include "support/HPAParamMgr.h"

#include <algorithm>
#include <map>

namespace {

using Kind = WordCompletion::Kind;
using Word = WordCompletion::Word;

std::vector<Word> findStores(const HSCPlaz& hub, bool isOwnOnly) {
    std::vector<Word> words;
    for (const HSCPlazQStore* store : hub.getStores())
        if (!isOwnOnly || store->isUserRepository()) words.push_back({store->getName(), store->getDisplayName()});
    return words;
}

std::vector<Word> findNames(const std::vector<ListedItem>& items, const std::string& begun) {
    std::map<std::string, std::size_t> stores; // how many have an item of that name
    const auto addItem = [&](const HSCPlazQItem& item) { ++stores[item.getName()]; };
    for (const ListedItem& listed : items) addItem(*listed.item);
    const bool isOfStore = begun.find("::") != std::string::npos;
    const bool isOfRevision = begun.find('@') != std::string::npos;
    std::vector<Word> words;
    for (const ListedItem& listed : items) {
        const HSCPlazQItem& item = *listed.item;
        // One that has been begun by its name alone is completed: a command tells which stores have it.
        const bool isAmbiguous = begun.empty() && stores[item.getName()] > 1;
        const std::string store = isOfStore || isAmbiguous ? item.getStoreName() + "::" : "";
        words.push_back(
            {store + item.getName() + (isOfRevision ? "@" + item.getRevision() : ""), item.getDisplayName()});
    }
    return words;
}

std::vector<Word> findItems(HSCPlaz& hub, Kind kind, const std::string& begun) {
    ItemQuery query;
    query.installed = kind == Kind::installedItem || kind == Kind::heldItem;
    query.allRevisions = begun.find('@') != std::string::npos;
    std::vector<ListedItem> items = HubQueries(hub).findItems(query);
    const auto isThere = [](const ListedItem& listed) { return listed.item->IsInstalled(); };
    if (kind == Kind::newItem) items.erase(std::remove_if(items.begin(), items.end(), isThere), items.end());
    const auto isFree = [](const ListedItem& listed) { return !listed.isHeld; };
    if (kind == Kind::heldItem) items.erase(std::remove_if(items.begin(), items.end(), isFree), items.end());
    return findNames(items, begun);
}

/// What can be taken back, the newest first.
std::vector<Word> findEntries() {
    std::vector<Word> words;
    for (const HSCPlazHistoryEntry& entry : HSCPlazInspection::readHistory()) {
        std::string done = entry.command;
        if (done.empty() && !entry.changes.empty()) // it was interrupted, say
            done = entry.changes.front().item.toText() + " " + entry.changes.front().describe();
        if (!entry.isTakenBack) words.push_back({std::to_string(entry.number), done});
    }
    return words;
}

std::vector<Word> findWords(HSCPlaz& hub, const WordCompletion& asked) {
    std::vector<Word> words = asked.words;
    switch (asked.kind) {
    case Kind::store:
    case Kind::ownStore:
        return findStores(hub, asked.kind == Kind::ownStore);
    case Kind::item:
    case Kind::newItem:
    case Kind::installedItem:
    case Kind::heldItem:
        return findItems(hub, asked.kind, asked.begun);
    case Kind::category:
        for (const std::string& name : findCategoryNames(hub.getStores())) words.push_back({name, ""});
        break;
    case Kind::param:
    case Kind::setting:
        for (const HPAParam* param : findParams("", true))
            words.push_back({param->getName() + (asked.kind == Kind::setting ? "=" : ""), param->getDescription()});
        break;
    case Kind::entry:
        return findEntries();
    case Kind::words:
    case Kind::file:
    case Kind::directory:
        break;
    }
    return words;
}

} // namespace

int Program::runComplete() {
    // RATIONALE: messages would stand in the midst of the line that somebody types, and every other command tells them;
    // the log would be taken for words.
    ComMsgMgr::setVerbosity(-1);
    HPAParamMgr::getParamMgr().setValue("plaz.enableLog", "false");
    WordCompletion completion = m_options.completion;
    const bool isKnown =
        completion.kind == Kind::words || completion.kind == Kind::file || completion.kind == Kind::directory;
    try {
        if (!isKnown) completion.words = findWords(HSCPlazMgr::getInstance().getHub(), completion);
    } catch (const HEXAll&) { // of a file that cannot be read nothing is offered
    }
    std::vector<Word>& words = completion.words;
    if (completion.kind != Kind::entry)
        std::sort(words.begin(), words.end(), [](const Word& a, const Word& b) { return a.text < b.text; });
    words.erase(std::unique(words.begin(), words.end(), [](const Word& a, const Word& b) { return a.text == b.text; }),
                words.end());
    m_output->showText("completion", completion.print());
    return exitStatus::done;
}
