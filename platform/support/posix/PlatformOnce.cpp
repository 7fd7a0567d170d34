#include "support/HUTOnce.h"

#include <mutex>

void* HUTOnce::get(void* (*create)()) {
    // One for all, which may be taken again: making an object may ask for another one.
    static std::recursive_mutex mutex;
    if (void* const object = m_state.load(std::memory_order_acquire)) return object;
    const std::lock_guard guard(mutex);
    void* object = m_state.load(std::memory_order_relaxed);
    if (object) return object;
    object = create();
    m_state.store(object, std::memory_order_release);
    return object;
}
