#pragma once

class HSCPlazQItem;
class HSCPlazQStore;

/// Tells who refers to stores and items from outside, such as the caches of script objects, that one is about to go.
namespace HSCPlazDestruction {

/// Called with a store or item before anything of it goes. Must not throw.
struct Observer {
    void (*storeGoes)(const HSCPlazQStore* store);
    void (*itemGoes)(const HSCPlazQItem* item);
    const Observer* next = nullptr; ///< set by observe()
};

/// From now on the observer is told, until the process ends. It must live as long, and be registered once.
void observe(Observer& observer);
void notify(const HSCPlazQStore* store);
void notify(const HSCPlazQItem* item);

} // namespace HSCPlazDestruction
