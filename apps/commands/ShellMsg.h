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
inline constexpr MsgId<2> filesNotValid{"@17-2187@%s%s"};     ///< how many, of how many
inline constexpr MsgId<1> problemsFound{"@17-2196@%s"};       ///< how many
inline constexpr MsgId<2> nothingFits{"@17-2197@%s%s"};       ///< "item" or "store", pattern
inline constexpr MsgId<2> filterWrong{"@17-2198@%s%s"};       ///< character, what is wrong there
inline constexpr MsgId<1> objectGone{"@17-2199@%s"};          ///< text of the script object
inline constexpr MsgId<2> objectOfOtherKind{"@17-2200@%s%s"}; ///< its text, "a store, not an item"
inline constexpr MsgId<2> propertyUnknown{"@17-2201@%s%s"};   ///< property, the properties there are
inline constexpr MsgId<1> propertyReadOnly{"@17-2202@%s"};    ///< property
inline constexpr MsgId<1> paramUnknown{"@17-2203@%s"};        ///< parameter
inline constexpr MsgId<1> paramRefused{"@17-2204@%s"};        ///< parameter
inline constexpr MsgId<0> nothingNamed{"@17-2205@"};
inline constexpr MsgId<1> preferencesNotSaved{"@17-2206@%s"}; ///< file
inline constexpr MsgId<1> notAReference{"@17-2207@%s"};       ///< text
inline constexpr MsgId<0> hubNotFound{"@17-2208@"};
inline constexpr MsgId<0> textHoldsNul{"@17-2209@"};
inline constexpr MsgId<1> notOneStore{"@17-2210@%s"};  ///< what was named
inline constexpr MsgId<1> notOneObject{"@17-2211@%s"}; ///< how many were named
inline constexpr MsgId<0> objectsForgotten{"@17-2212@"};
inline constexpr MsgId<2> itemOfOtherStore{"@17-2213@%s%s"}; ///< a reference; the store in which it was to be
inline constexpr MsgId<0> nothingInstalled{"@17-2238@"};
inline constexpr MsgId<2> itemNeeded{"@17-2239@%s%s"};         ///< reference, by what
inline constexpr MsgId<1> noOldRevision{"@17-2241@%s"};        ///< reference
inline constexpr MsgId<2> settingKept{"@17-2320@%s%s"};        ///< parameter, value
inline constexpr MsgId<3> settingOverruled{"@17-2321@%s%s%s"}; ///< parameter, variable, its value
inline constexpr MsgId<2> settingUseless{"@17-2322@%s%s"};     ///< parameter, what is wrong
inline constexpr MsgId<2> settingForgotten{"@17-2323@%s%s"};   ///< parameter, value
inline constexpr MsgId<2> settingNotKept{"@17-2324@%s%s"};     ///< parameter, value
inline constexpr MsgId<1> settingIsSecret{"@17-2325@%s"};      ///< parameter
inline constexpr MsgId<1> settingNotGiven{"@17-2326@%s"};      ///< parameter
inline constexpr MsgId<2> urlHoldsLogin{"@17-2337@%s%s"};      ///< store, URL
inline constexpr MsgId<0> nothingPlanned{"@17-2288@"};
inline constexpr MsgId<1> isInstalled{"@17-2289@%s"};         ///< reference of an item
inline constexpr MsgId<1> nothingInTheWay{"@17-2290@%s"};     ///< reference of an item
inline constexpr MsgId<1> installBrings{"@17-2294@%s"};       ///< reference of an item
inline constexpr MsgId<2> storeItemsUnknown{"@17-2339@%s%s"}; ///< store, store
inline constexpr MsgId<0> doctorKnows{"@17-2366@"};
inline constexpr MsgId<0> hubEmpty{"@17-2336@"};
inline constexpr MsgId<2> hubNotFetched{"@17-2360@%s%s"};       ///< URL, release
inline constexpr MsgId<3> nameUnknown{"@17-2300@%s%s%s"};       ///< kind of name, name, those there are
inline constexpr MsgId<4> nameUnknownNear{"@17-2301@%s%s%s%s"}; ///< kind of name, name, similar ones, those there are
inline constexpr MsgId<1> termsSearched{"@17-2302@%s"};         ///< what was typed
inline constexpr MsgId<2> wordReplaced{"@17-2303@%s%s"};        ///< word, what was searched instead
inline constexpr MsgId<1> nothingMentions{"@17-2304@%s"};       ///< words
inline constexpr MsgId<1> noneInState{"@17-2305@%s"};           ///< "installed" or "out of date"
inline constexpr MsgId<0> noItemFits{"@17-2306@"};
inline constexpr MsgId<2> noneInStateOfStore{"@17-2307@%s%s"}; ///< store, "installed" or "out of date"
inline constexpr MsgId<0> nothingOffered{"@17-2308@"};
inline constexpr MsgId<1> moreItems{"@17-2309@%s"};           ///< how many
inline constexpr MsgId<1> itemInactive{"@17-2310@%s"};        ///< reference
inline constexpr MsgId<3> nothingFitsNear{"@17-2311@%s%s%s"}; ///< "item" or "store", pattern, similar names
inline constexpr MsgId<0> nothingHeld{"@17-2344@"};
inline constexpr MsgId<4> heldPassedOver{"@17-2345@%s%s%s%s"}; ///< display name, revision, offered one, STORE::NAME
inline constexpr MsgId<2> heldNotInstalled{"@17-2346@%s%s"};   ///< STORE::NAME, the same
inline constexpr MsgId<0> nothingDone{"@17-2349@"};
inline constexpr MsgId<0> cancelled{"@17-2190@"};
} // namespace ShellMsg
