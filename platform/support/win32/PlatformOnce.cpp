#include "support/HUTOnce.h"

#include "Win32.h"

#include <cstdlib>

static_assert(sizeof(std::atomic<void*>) == sizeof(INIT_ONCE) && std::atomic<void*>::is_always_lock_free);

void* HUTOnce::get(void* (*create)()) {
    auto* const once = reinterpret_cast<INIT_ONCE*>(&m_state);
    BOOL isPending = FALSE;
    void* object = nullptr;
    if (!InitOnceBeginInitialize(once, 0, &isPending, &object)) std::abort();
    if (!isPending) return object;
    try {
        object = create();
    } catch (...) {
        InitOnceComplete(once, INIT_ONCE_INIT_FAILED, nullptr);
        throw;
    }
    if (!InitOnceComplete(once, 0, object)) std::abort();
    return object;
}
