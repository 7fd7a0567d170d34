#pragma once

#include "support/ComMsgMgr.h"

/// The messages that the Python module throws, with the arguments each takes. The texts are shipped data.
namespace PythonMsg {
inline constexpr MsgId<0> hubInUse{"@17-2220@"};      ///< another call is under way
inline constexpr MsgId<0> callFailed{"@17-2221@"};    ///< no error was sent
inline constexpr MsgId<0> hubHasStarted{"@17-2222@"}; ///< too late to set the product
} // namespace PythonMsg
