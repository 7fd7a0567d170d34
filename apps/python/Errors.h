#pragma once

#include "support/ComMsgMgr.h"

#include <pybind11/pybind11.h>

#include <vector>

using Messages = std::vector<ComMsgMgr::Message>;

/// Raises the exception of the package that stands for a message.
///
/// @param messages  all messages of the call that failed
/// @param results   what became of each item or store that the call had come to
[[noreturn]] void raiseError(const HEXAll& reason, const Messages& messages = {},
                             const pybind11::list& results = pybind11::list());

/// Hands a message to Python's logging, as the logger "plaz" takes it.
/// @throws error_already_set what a handler raises
void logMessage(const ComMsgMgr::Message& message);
