#include "plaz/bindings/HSCPlazHostCommands.h"

namespace {

bool isStoreTaken = false;

} // namespace

void HSCPlazHostCommands::setTakeStore(bool isTaken) {
    isStoreTaken = isTaken;
}

bool HSCPlazHostCommands::takeStore() {
    return isStoreTaken;
}
