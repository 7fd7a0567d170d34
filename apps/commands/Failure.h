#pragma once

#include "support/ComMsgMgr.h"

#include <string>
#include <utility>

/// A message of the hub or of the front ends.
template <std::size_t Arity, typename... Args>
ComMsgMgrInstance messageOf(const MsgId<Arity>& id, const Args&... args) {
    return {"", 0, "common", id, args...};
}

/// Throws HEXAll with that message.
template <std::size_t Arity, typename... Args> [[noreturn]] void failWith(const MsgId<Arity>& id, const Args&... args) {
    throw HEXAll(messageOf(id, args...));
}

/// A failure with more to tell people than its message: what() goes on behind the message's text.
class ExplainedFailure : public HEXAll {
public:
    ExplainedFailure(ComMsgMgrInstance message, const std::string& more)
        : HEXAll(std::move(message)), m_text(HEXAll::what() + more) {}
    const char* what() const noexcept override { return m_text.c_str(); }

private:
    std::string m_text;
};

/// Whether a message of that number, "17-2190", is the one that a MsgId's key means.
inline bool isKeyOf(const char* key, const std::string& number) {
    return std::string(key).rfind("@" + number + "@", 0) == 0;
}
