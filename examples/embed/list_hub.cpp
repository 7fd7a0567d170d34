// Starts the hub inside a program of one's own and lists what its stores offer.
// "list_hub install ITEM" also installs the latest revision of an item, whichever store has it first.

#include "plaz/HSCPlazMgr.h"
#include "plaz/HSCPlazTaskMgr.h"
#include "plaz/model/HSCPlaz.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "support/ComMsgMgr.h"
#include "support/HDGUIStatus.h"

#include <iostream>
#include <string>

namespace {

void list(const HSCPlaz& hub) {
    for (const HSCPlazQStore* store : hub.getStores()) {
        std::cout << store->getName() << ": " << store->getDisplayName() << '\n';
        for (const HSCPlazQItem* item : store->getItems())
            std::cout << "  " << item->getName() << ' ' << item->getRevision() << "  " << item->getDisplayName()
                      << (item->IsInstalled() ? "  (installed)" : "") << '\n';
    }
}

bool install(HSCPlaz& hub, const std::string& name) {
    for (HSCPlazQStore* store : hub.getStores()) {
        if (HSCPlazQItem* item = store->getItem(name)) {
            HDGUIStatus status; // a front end would watch it and call cancel() when the user wants that
            return HSCPlazTaskMgr::install(&hub, item, false, &status);
        }
    }
    std::cerr << "No store has an item \"" << name << "\".\n";
    return false;
}

} // namespace

int main(int argc, char* argv[]) {
    // Messages arrive as data; this program writes them to its own place in its own form.
    ComMsgMgr::setSink([](const ComMsgMgr::Message& message) {
        std::cerr << message.label << ' ' << message.id << ": " << message.text << '\n';
    });
    try {
        HSCPlaz& hub = HSCPlazMgr::getInstance().getHub();
        if (argc == 3 && argv[1] == std::string("install") && !install(hub, argv[2])) return 1;
        list(hub);
        return hub.getStores().empty() ? 1 : 0;
    } catch (const HEXAll& failure) {
        ComMsgMgr::send(failure);
        return 1;
    }
}
