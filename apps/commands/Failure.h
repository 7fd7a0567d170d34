#pragma once

#include "support/ComMsgMgr.h"

#include <string>

/// A message of the hub or of the front ends.
template <std::size_t Arity, typename... Args>
ComMsgMgrInstance messageOf(const MsgId<Arity>& id, const Args&... args) {
    return {"", 0, "common", id, args...};
}

/// Throws HEXAll with that message.
template <std::size_t Arity, typename... Args> [[noreturn]] void failWith(const MsgId<Arity>& id, const Args&... args) {
    throw HEXAll(messageOf(id, args...));
}

/// Whether a message of that number, "17-2190", is the one that a MsgId's key means.
inline bool isKeyOf(const char* key, const std::string& number) {
    return std::string(key).rfind("@" + number + "@", 0) == 0;
}
