#pragma once

#include "support/ComMsgMgr.h"

/// The numbered messages that the hub sends or throws, with the arguments each takes. The texts are shipped data.
namespace Msg {
inline constexpr MsgId<2> remoteRepoPathUnset{"@17-1532@%s%s"}; ///< variable, variable
inline constexpr MsgId<2> userRepoPathMissing{"@17-1538@%s%s"}; ///< variable, variable
inline constexpr MsgId<1> dependencyRemoved{"@17-1553@%s"};     ///< item
inline constexpr MsgId<1> dependencyInstalled{"@17-1554@%s"};   ///< item
inline constexpr MsgId<0> dataAccessOff{"@17-1557@"};
inline constexpr MsgId<0> remoteAccessOff{"@17-1559@"};
inline constexpr MsgId<1> dependencyInstallFailed{"@17-1560@%s"}; ///< item
inline constexpr MsgId<1> itemInstallFailed{"@17-1567@%s"};       ///< display name
inline constexpr MsgId<1> itemNotPlanned{"@17-2291@%s"};          ///< display name
inline constexpr MsgId<1> itemHeld{"@17-1568@%s"};                ///< display name
inline constexpr MsgId<0> hubMetadataMissing{"@17-1569@"};
inline constexpr MsgId<2> itemInstalling{"@17-1570@%s%s"};     ///< display name, store URL
inline constexpr MsgId<1> hubRemoteAccessOff{"@17-1571@%s"};   ///< hub root
inline constexpr MsgId<1> itemAlreadyInstalled{"@17-1572@%s"}; ///< display name
inline constexpr MsgId<1> itemInstalled{"@17-1573@%s"};        ///< display name
inline constexpr MsgId<1> itemRemoved{"@17-1574@%s"};          ///< display name
inline constexpr MsgId<1> commitIdMissing{"@17-1579@%s"};      ///< item
inline constexpr MsgId<1> dirNotWritable{"@17-1580@%s"};       ///< directory
inline constexpr MsgId<1> dirNotCreated{"@17-1581@%s"};        ///< directory
inline constexpr MsgId<0> gitFailed{"@17-1587@"};
inline constexpr MsgId<2> dirUsedByOtherStore{"@17-1668@%s%s"}; ///< other store, directory
inline constexpr MsgId<1> credentialsMissing{"@17-1669@%s"};    ///< store
inline constexpr MsgId<1> dirCreated{"@17-1670@%s"};            ///< directory
inline constexpr MsgId<0> gitNotFound{"@17-1928@"};
inline constexpr MsgId<2> gitErrors{"@17-1990@%s%s"};           ///< command line, git's own words
inline constexpr MsgId<1> shippedDataMissing{"@17-2001@%s"};    ///< store
inline constexpr MsgId<2> shippedDataUnusable{"@17-2002@%s%s"}; ///< store, file
inline constexpr MsgId<2> fetchedItemInvalid{"@17-2133@%s%s"};  ///< item, file
inline constexpr MsgId<1> storeWithoutCatalogs{"@17-1929@%s"};  ///< store
inline constexpr MsgId<2> catalogFileInvalid{"@17-2134@%s%s"};  ///< store, file
inline constexpr MsgId<2> storeFileInvalid{"@17-2135@%s%s"};    ///< store, file
inline constexpr MsgId<1> hubFileInvalid{"@17-2136@%s"};        ///< file
inline constexpr MsgId<2> itemCatalogInvalid{"@17-2139@%s%s"};  ///< file, item
inline constexpr MsgId<1> fileNameEmpty{"@17-2137@%s"};         ///< the (empty) name
inline constexpr MsgId<1> fileMissing{"@17-2138@%s"};           ///< file
inline constexpr MsgId<2> fileNotJson{"@17-2140@%s%s"};         ///< file, parser's message
inline constexpr MsgId<2> itemRefused{"@17-2160@%s%s"};         ///< item, reason
inline constexpr MsgId<2> storeRefused{"@17-2161@%s%s"};        ///< store, reason
inline constexpr MsgId<2> databaseForeign{"@17-2162@%s%s"};     ///< store, database file
inline constexpr MsgId<2> removalRefused{"@17-2163@%s%s"};      ///< item, directory
inline constexpr MsgId<1> databaseNotSaved{"@17-2164@%s"};      ///< file
inline constexpr MsgId<1> itemNotInstalled{"@17-2165@%s"};      ///< display name
inline constexpr MsgId<2> removalIncomplete{"@17-2166@%s%s"};   ///< item, directory
inline constexpr MsgId<2> dependencyUnknown{"@17-2167@%s%s"};   ///< item, store
inline constexpr MsgId<1> hubBusy{"@17-2168@%s"};               ///< lock file
inline constexpr MsgId<1> credentialsRefused{"@17-2169@%s"};    ///< URL without user part
inline constexpr MsgId<2> branchReplaced{"@17-2170@%s%s"};      ///< store, branch
inline constexpr MsgId<3> branchMissing{"@17-2171@%s%s%s"};     ///< store, what it lacks, what it has
inline constexpr MsgId<1> repositoryEmpty{"@17-2172@%s"};       ///< store
inline constexpr MsgId<2> commitGone{"@17-2173@%s%s"};          ///< item, commit
inline constexpr MsgId<2> contentMissing{"@17-2361@%s%s"};      ///< item, file
inline constexpr MsgId<1> credentialsWithheld{"@17-2174@%s"};   ///< URL without user part
inline constexpr MsgId<1> storeMovedMeanwhile{"@17-2175@%s"};   ///< store
inline constexpr MsgId<3> itemsLeftBehind{"@17-2176@%s%s%s"};   ///< store, directory, where to move it back to
inline constexpr MsgId<1> placesNotSaved{"@17-2177@%s"};        ///< file
inline constexpr MsgId<2> storeWithdrawn{"@17-2178@%s%s"};      ///< store, its area
inline constexpr MsgId<3> ownStoreHeld{"@17-2292@%s%s%s"};      ///< store, its area, store
inline constexpr MsgId<2> placeNotText{"@17-2293@%s%s"};        ///< store, directory
inline constexpr MsgId<2> ownFilesLeft{"@17-2295@%s%s"};        ///< store, its area
inline constexpr MsgId<2> textNotForTcl{"@17-2179@%s%s"};       ///< name, path or proxy, why
inline constexpr MsgId<2> nameInSeveralStores{"@17-2285@%s%s"}; ///< name, references
inline constexpr MsgId<2> dependencyTooDeep{"@17-2286@%s%s"};   ///< item, how many
inline constexpr MsgId<2> dependenciesGivenUp{"@17-2287@%s%s"}; ///< item that was asked for, how many
inline constexpr MsgId<1> itemFetchedAgain{"@17-2188@%s"};      ///< display name
inline constexpr MsgId<1> unexpectedFailure{"@17-2189@%s"};     ///< what the system or a library said
inline constexpr MsgId<1> storeNotRefreshed{"@17-2191@%s"};     ///< store
inline constexpr MsgId<2> storeNotMoved{"@17-2192@%s%s"};       ///< store, directory
inline constexpr MsgId<0> hubNotRefreshed{"@17-2194@"};
inline constexpr MsgId<2> storeNotChecked{"@17-2195@%s%s"};      ///< store, why
inline constexpr MsgId<2> waitsForHub{"@17-2223@%s%s"};          ///< which process holds it, seconds
inline constexpr MsgId<1> databaseUnreadable{"@17-2224@%s"};     ///< file
inline constexpr MsgId<1> changeFinished{"@17-2225@%s"};         ///< item
inline constexpr MsgId<1> changeUndone{"@17-2226@%s"};           ///< item
inline constexpr MsgId<1> needsUnknown{"@17-2227@%s"};           ///< reference
inline constexpr MsgId<2> databaseDamaged{"@17-2228@%s%s"};      ///< file, where it will be kept
inline constexpr MsgId<2> databaseOfOtherStore{"@17-2229@%s%s"}; ///< store, database file
inline constexpr MsgId<3> itemHeldAt{"@17-2230@%s%s%s"};         ///< display name, revision, by whom
inline constexpr MsgId<3> ownFilesKept{"@17-2231@%s%s%s"};       ///< display name, where, files
inline constexpr MsgId<2> ownFilesNotKept{"@17-2232@%s%s"};      ///< display name, where they should go
inline constexpr MsgId<2> ownFileUnreadable{"@17-2233@%s%s"};    ///< file, display name
inline constexpr MsgId<2> filesRestored{"@17-2234@%s%s"};        ///< display name, files
inline constexpr MsgId<3> filesChanged{"@17-2235@%s%s%s"};       ///< display name, files, reference
inline constexpr MsgId<3> itemDamaged{"@17-2236@%s%s%s"};        ///< reference, in what way, reference
inline constexpr MsgId<3> filesUnknown{"@17-2237@%s%s%s"};       ///< reference, why, reference
inline constexpr MsgId<2> linkLeadsOut{"@17-2242@%s%s"};         ///< folder, item
inline constexpr MsgId<3> itemOverlaps{"@17-2243@%s%s%s"};       ///< item, folder, reference of the other one
inline constexpr MsgId<3> formerFolderStays{"@17-2244@%s%s%s"};  ///< display name, folder, former folder
inline constexpr MsgId<2> itemWithdrawn{"@17-2245@%s%s"};        ///< store, display name
inline constexpr MsgId<2> placesDamaged{"@17-2246@%s%s"};        ///< file, parser's message
inline constexpr MsgId<1> oldFilesStay{"@17-2248@%s"};           ///< directory
inline constexpr MsgId<1> databaseGone{"@17-2247@%s"};           ///< file
inline constexpr MsgId<3> placeMissing{"@17-2249@%s%s%s"};       ///< directory, store, store
inline constexpr MsgId<1> needsUnreadable{"@17-2250@%s"};        ///< database, or directory of a store
inline constexpr MsgId<2> storeFileMisplaced{"@17-2251@%s%s"};   ///< store, file
inline constexpr MsgId<4> placeTaken{"@17-2270@%s%s%s%s"};       ///< directory, store, whose, store
inline constexpr MsgId<3> placeAlwaysTaken{"@17-2271@%s%s%s"};   ///< directory, store, whose
inline constexpr MsgId<2> placeOfHub{"@17-2272@%s%s"};           ///< store, directory
inline constexpr MsgId<3> storeFileTaken{"@17-2273@%s%s%s"};     ///< store, file, whose
inline constexpr MsgId<2> changeWaits{"@17-2253@%s%s"};          ///< store, note
inline constexpr MsgId<1> recordAway{"@17-2254@%s"};             ///< directory
inline constexpr MsgId<2> limitExceeded{"@17-2280@%s%s"};        ///< file or store, which limit and parameter
inline constexpr MsgId<3> manyFindings{"@17-2281@%s%s%s"};       ///< how many, of what, the first ones
inline constexpr MsgId<0> gitAccessOff{"@17-2255@"};
inline constexpr MsgId<2> workingCopyDiscarded{"@17-2265@%s%s"}; ///< directory, why
inline constexpr MsgId<2> workingCopyRefused{"@17-2266@%s%s"};   ///< directory, why
inline constexpr MsgId<1> lockIsLink{"@17-2268@%s"};             ///< lock file
inline constexpr MsgId<1> linkInPlace{"@17-2267@%s"};            ///< directory
/// directory, store, what to make in it
inline constexpr MsgId<3> placeOfNoStoreMissing{"@17-2252@%s%s%s"};
inline constexpr MsgId<1> hubUnlocked{"@17-2240@%s"};     ///< lock file
inline constexpr MsgId<2> catalogUnread{"@17-2214@%s%s"}; ///< store, store
/// of git: command, URL without user part or directory, limit
inline constexpr MsgId<3> gitTimeLimit{"@17-2275@%s%s%s"};
inline constexpr MsgId<3> gitMemoryLimit{"@17-2276@%s%s%s"};
inline constexpr MsgId<3> gitLogLimit{"@17-2277@%s%s%s"};
inline constexpr MsgId<3> gitPaceLimit{"@17-2278@%s%s%s"};
inline constexpr MsgId<2> serverNotTrusted{"@17-2260@%s%s"};    ///< server, why
inline constexpr MsgId<1> authoritiesUnusable{"@17-2261@%s"};   ///< file
inline constexpr MsgId<3> boardLoginKept{"@17-2262@%s%s%s"};    ///< server, store, server that it belongs to
inline constexpr MsgId<1> ownStoresDamaged{"@17-2327@%s"};      ///< file
inline constexpr MsgId<1> storeAdded{"@17-2328@%s"};            ///< store
inline constexpr MsgId<1> storeNotAdded{"@17-2329@%s"};         ///< store
inline constexpr MsgId<1> storeNameTaken{"@17-2330@%s"};        ///< store
inline constexpr MsgId<1> storeTakenAway{"@17-2331@%s"};        ///< store
inline constexpr MsgId<1> storeNotOwn{"@17-2332@%s"};           ///< store
inline constexpr MsgId<1> ownStoreHidden{"@17-2333@%s"};        ///< store
inline constexpr MsgId<2> metadataFileUnknown{"@17-2334@%s%s"}; ///< URL, the names looked for
inline constexpr MsgId<2> newStoreRefused{"@17-2338@%s%s"};     ///< store, why
inline constexpr MsgId<1> ownStoresNotSaved{"@17-2335@%s"};     ///< file
inline constexpr MsgId<2> heldUnknown{"@17-2340@%s%s"};         ///< file, why
inline constexpr MsgId<1> heldNotSaved{"@17-2341@%s"};          ///< file
inline constexpr MsgId<3> itemIsHeld{"@17-2342@%s%s%s"};        ///< display name, revision, STORE::NAME
inline constexpr MsgId<1> itemNotHeld{"@17-2343@%s"};           ///< STORE::NAME
inline constexpr MsgId<2> historyUnknown{"@17-2347@%s%s"};      ///< file, why
inline constexpr MsgId<1> historyNotSaved{"@17-2348@%s"};       ///< file
inline constexpr MsgId<0> undoNothing{"@17-2350@"};
inline constexpr MsgId<1> undoUnknown{"@17-2351@%s"};      ///< number
inline constexpr MsgId<1> undoneAlready{"@17-2352@%s"};    ///< number
inline constexpr MsgId<2> undoBarred{"@17-2353@%s%s"};     ///< number, later entries
inline constexpr MsgId<2> undoChanged{"@17-2354@%s%s"};    ///< number, reference
inline constexpr MsgId<2> undoNotFetched{"@17-2355@%s%s"}; ///< number, references
inline constexpr MsgId<2> undoKept{"@17-2356@%s%s"};       ///< display name, by whom
inline constexpr MsgId<2> undone{"@17-2357@%s%s"};         ///< number, command
inline constexpr MsgId<2> undoIncomplete{"@17-2358@%s%s"}; ///< number, the same
inline constexpr MsgId<2> undoOutOfSight{"@17-2359@%s%s"}; ///< number, store
inline constexpr MsgId<0> sampleHubMissing{"@17-2365@"};
inline constexpr MsgId<1> clonedRepo{"@60-832@%s"}; ///< directory
} // namespace Msg
