#pragma once

#include "support/ComMsgMgr.h"

/// The messages that the commands send or throw, with the arguments each takes. The texts are shipped data.
namespace ShellMsg {
inline constexpr MsgId<2> storeUnknown{"@17-2180@%s%s"};     ///< store, the stores there are
inline constexpr MsgId<1> itemUnknown{"@17-2181@%s"};        ///< reference
inline constexpr MsgId<2> itemUnknownNear{"@17-2182@%s%s"};  ///< reference, items of similar names
inline constexpr MsgId<2> itemAmbiguous{"@17-2183@%s%s"};    ///< reference, candidates
inline constexpr MsgId<2> revisionUnknown{"@17-2184@%s%s"};  ///< reference, candidates
inline constexpr MsgId<2> severalInstalled{"@17-2185@%s%s"}; ///< reference, installed revisions
inline constexpr MsgId<0> nothingToUpdate{"@17-2186@"};
inline constexpr MsgId<2> filesNotValid{"@17-2187@%s%s"};  ///< how many, of how many
inline constexpr MsgId<1> itemFetchedAgain{"@17-2188@%s"}; ///< display name
inline constexpr MsgId<2> storeNotMoved{"@17-2192@%s%s"};  ///< store, directory
inline constexpr MsgId<0> hubNotRefreshed{"@17-2194@"};
inline constexpr MsgId<2> storeNotChecked{"@17-2195@%s%s"}; ///< store, why
inline constexpr MsgId<1> problemsFound{"@17-2196@%s"};     ///< how many
inline constexpr MsgId<0> cancelled{"@17-2190@"};
} // namespace ShellMsg
