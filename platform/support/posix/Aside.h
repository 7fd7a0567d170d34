#pragma once

#include <functional>
#include <sys/types.h>

namespace platform {

/// Does @p work in a task of the system's that has this one's memory and, but for what @p flags of clone(2) share, its
/// own tables: of signal handlers, of the mask for new files. The calling thread stands still meanwhile, and no handler
/// runs there. Nothing must be thrown.
/// @return the task; negative, with nothing done and errno set, where the system has none
pid_t workAside(int flags, const std::function<void()>& work);

} // namespace platform
