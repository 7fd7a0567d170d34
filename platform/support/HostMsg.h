#pragma once

#include "support/ComMsgMgr.h"

/// The messages that the host itself sends, with the arguments each takes.
namespace HostMsg {
inline constexpr MsgId<1> jsonFileUnreadable{"@12-101@%s"};      ///< file
inline constexpr MsgId<2> jsonFileUnparsable{"@12-102@%s%s"};    ///< file, parser's message or offending place
inline constexpr MsgId<1> schemaFileUnreadable{"@12-103@%s"};    ///< file
inline constexpr MsgId<2> schemaFileUnparsable{"@12-104@%s%s"};  ///< file, parser's message
inline constexpr MsgId<1> preferencesNotSaved{"@12-105@%s"};     ///< file
inline constexpr MsgId<2> preferencesUnreadable{"@12-106@%s%s"}; ///< file, reason
inline constexpr MsgId<1> tclUnavailable{"@12-107@%s"};          ///< Tcl's error text
inline constexpr MsgId<1> tclFailed{"@12-108@%s"};               ///< Tcl's error text
inline constexpr MsgId<1> scriptCacheError{"@12-109@%s"};        ///< what does not hold
inline constexpr MsgId<2> paramUnfit{"@12-110@%s%s"};            ///< parameter, where its value stands
} // namespace HostMsg
