#include "plaz/HSCPlazCommand.h"

#include "plaz/HSCPlazMgr.h"
#include "plaz/model/HSCPlazHistoryEntry.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/store/HSCPlazWorkspace.h"

namespace {

HSCPlazHistory& history() {
    return HSCPlazMgr::getInstance().getWorkspace().history;
}

std::string describe(const std::string& action, const std::vector<HSCPlazQItem*>& items) {
    constexpr std::size_t shown = 20;
    std::string text = action;
    for (std::size_t i = 0; i < items.size() && i < shown; ++i) {
        const bool isPlain = items[i]->getRevision() == items[i]->getLatestRevision();
        text += " " + HSCPlazRevisionName{items[i]->getStoreName(), items[i]->getName(),
                                          isPlain ? std::string() : items[i]->getRevision()}
                          .toText();
    }
    return items.size() > shown ? text + " and " + std::to_string(items.size() - shown) + " more" : text;
}

} // namespace

HSCPlazCommand::HSCPlazCommand(const std::string& text) : m_isOutermost(history().beginCommand(text)) {}

HSCPlazCommand::HSCPlazCommand(const std::string& action, const std::vector<HSCPlazQItem*>& items)
    : HSCPlazCommand(describe(action, items)) {}

HSCPlazCommand::~HSCPlazCommand() {
    if (m_isOutermost) history().endCommand();
}
