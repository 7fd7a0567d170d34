#pragma once

namespace platform {

/// Children that are started from now on, and theirs, hold a file lock too. @p file is its descriptor.
void shareLock(int file);
void unshareLock(int file);

} // namespace platform
