// Does what a user interface does when something is clicked, message by message on standard error:
//
//     facade_driver refresh STORE | install ITEM | uninstall ITEM | update ITEM
#include "TclCommands.h"

#include "plaz/bindings/HSCPlazSwigIntf.h"
#include "plaz/model/HSCPlazQItem.h"
#include "plaz/model/HSCPlazQStore.h"
#include "scripting/task_manager.h"
#include "support/ComMsgMgr.h"
#include "support/HDGUIStatus.h"

#include <iostream>
#include <stdexcept>

namespace {

using Facade = HSCPlazSwigIntf;

HSCPlazQItem* findItem(const std::string& name) {
    for (const HSCPlazQStore* store : Facade::getStores())
        if (HSCPlazQItem* item = store->getItem(name)) return item;
    throw std::runtime_error("there is no item " + name);
}

bool click(const std::string& button, const std::string& name) {
    HDGUIStatus status;
    HSCPlazTypes::HSCPlazException exception;
    if (button == "refresh")
        return Facade::refreshCatalog(const_cast<HSCPlazQStore*>(Facade::getStore(name)), status, exception);
    if (button == "install") return Facade::install(findItem(name), status, exception);
    if (button == "uninstall") return Facade::uninstall(findItem(name), status, exception);
    if (button == "update") return Facade::update(findItem(name), status, exception);
    throw std::runtime_error("there is no button " + button);
}

} // namespace

int main(int argc, char** argv) {
    static HDGUIStatus status;
    try {
        registerPlazCommands(hdi::tcltasks::task_manager::get_interp(), status);
        return argc == 3 && click(argv[1], argv[2]) ? 0 : 1;
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
}
