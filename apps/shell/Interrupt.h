#pragma once

class HDGUIStatus;

/// Ctrl-C as cancellation: the first one cancels the running operation and kills the git command it waits for; a second
/// one ends the process as usual.
namespace Interrupt {

/// From now on Ctrl-C cancels @p status, which must live until the process ends. Called again after a cancellation, it
/// makes the next Ctrl-C another first one.
/// @param also  is called as well, from the signal handler; may be null
void cancelOnCtrlC(HDGUIStatus& status, void (*also)() = nullptr);

} // namespace Interrupt
