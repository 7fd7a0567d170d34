#pragma once

#include "support/ComMsgMgr.h"

#include <string>

/// An error of a command: its text, and what stands behind "PLAZ" in the errorCode.
struct TclFailure {
    std::string text;
    std::string code;
};

/// Ends a command whose error the interpreter holds already.
struct TclErrorIsSet {};

/// Throws TclFailure with the message's text. @param code  empty for the message's number
template <std::size_t Arity, typename... Args>
[[noreturn]] void failTcl(const std::string& code, const MsgId<Arity>& id, const Args&... args) {
    const ComMsgMgrInstance message("", 0, "common", id, args...);
    throw TclFailure{message.getMessage(), code.empty() ? message.getId() : code};
}
