#include "plaz/model/HSCPlazDestruction.h"

#include <utility>

namespace {

// A chain through the observers themselves: there is nothing that could be destroyed before the last store.
const HSCPlazDestruction::Observer* first = nullptr;

} // namespace

void HSCPlazDestruction::observe(Observer& observer) {
    observer.next = std::exchange(first, &observer);
}

void HSCPlazDestruction::notify(const HSCPlazQStore* store) {
    for (const Observer* observer = first; observer; observer = observer->next) observer->storeGoes(store);
}

void HSCPlazDestruction::notify(const HSCPlazQItem* item) {
    for (const Observer* observer = first; observer; observer = observer->next) observer->itemGoes(item);
}
