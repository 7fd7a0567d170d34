#pragma once

#include "plaz/base/HSCPlazTrust.h"

#include <string>
#include <string_view>

/// What a text from a metadata file must be before it is used as a path, a ref or a URL.
struct HSCPlazTrustRule {
    bool (*accepts)(const std::string& text);
    const char* otherwise;                           ///< what is wrong with a text that is not accepted
    std::string (*tidy)(std::string text) = nullptr; ///< how a text is put right first; null where it is not
};

namespace HSCPlazTrustRules {

inline constexpr HSCPlazTrustRule name{&HSCPlazTrust::isName, "is not a name that anybody could give"};
inline constexpr HSCPlazTrustRule insideStore{&HSCPlazTrust::isSafeRelativePath, "is not a path inside the store",
                                              &HSCPlazTrust::tidyRelativePath};
inline constexpr HSCPlazTrustRule folderName{&HSCPlazTrust::isSafeComponent, "is not a plain folder name"};
inline constexpr HSCPlazTrustRule gitRef{&HSCPlazTrust::isSafeRef, "is not a name that git may be given"};
inline constexpr HSCPlazTrustRule commitId{&HSCPlazTrust::isCommitId, "does not name a commit"};
inline constexpr HSCPlazTrustRule gitUrl{&HSCPlazTrust::isSafeUrl, "is not an address that git may be given"};

/// The text as it is used. @param rule  null where any text will do
std::string toUsed(const HSCPlazTrustRule* rule, std::string text);
/// The text in quotes, as people may be shown it: secrets blanked, nothing that a terminal would obey, cut where it
/// gets long.
std::string quote(const std::string& text);
/// Why @p text is not used: `its root "../../x" is not a path inside the store`; empty when it may be used.
/// An empty text may: it names nothing.
/// @param what  the member that holds the text
std::string findRefusal(const HSCPlazTrustRule& rule, std::string_view what, const std::string& text);

} // namespace HSCPlazTrustRules
