#pragma once

#include "support/HostExport.h"

#include <atomic>

/// One-time initialisation: makes an object on first use, once, however many threads ask for it first. The object lives
/// until the process ends.
class HOST_API HUTOnce {
public:
    /// @param create  returns the object, never null, at an address that 4 divides. What it throws comes out, and the
    /// next
    ///                call tries again.
    /// @return the object; the process is aborted when the initialisation cannot be completed
    void* get(void* (*create)());

private:
    std::atomic<void*> m_state{nullptr};
};
