#pragma once

#include "plaz/base/PlazExport.h"

#include <string>

/// What the hub takes from metadata files only after a look: names that become paths, refs and URLs.
/// Pure functions of their arguments.
namespace HSCPlazTrust {

/// The name of a store or an item that people and scripts can give: no control character, of which a null one would
/// end it and others steer what shows it.
PLAZ_API bool isName(const std::string& text);
/// A relative path that stays below where it starts on every system: not empty, not absolute, no component that is
/// empty or ends in a dot or blank (".." among them), none named ".git", ".plaz", ".staging" or ".done", whatever the
/// case, none that some systems keep for a device ("aux", "nul.txt"), no backslash, colon or control character, nothing
/// that is no UTF-8.
PLAZ_API bool isSafeRelativePath(const std::string& path);
/// The same path without what leads nowhere: "./boards//x/" is "boards/x". One that is nothing else stays as it is.
PLAZ_API std::string tidyRelativePath(std::string path);
/// One path component: a safe relative path without a separator that is not ".".
PLAZ_API bool isSafeComponent(const std::string& name);
/// A branch, tag or commit that git takes for nothing else: not empty, no leading "-", no blank or control character.
PLAZ_API bool isSafeRef(const std::string& ref);
/// A commit id: 7 to 64 hexadecimal digits. A branch of such a name aside, it means one commit for ever.
PLAZ_API bool isCommitId(const std::string& text);
/// A URL that git may be given: no leading "-", no transport that runs a program ("ext::", "fd::" and the like), no
/// control character, no blank or quote in user or host, no "/" in the user part; a local path is one too.
PLAZ_API bool isSafeUrl(const std::string& text);
/// Why a text would not arrive as it is when it is put into a Tcl command without quotes, for people: it holds a
/// character that Tcl interprets, a line end, bytes that are no UTF-8, or a blank that parting words would swallow
/// (tabs, several in a row, at either end). Empty for one that arrives; so does none at all.
PLAZ_API std::string findTclRefusal(const std::string& text);
/// The same for the name of a store or an item, which must not be empty nor look like an option.
PLAZ_API std::string findTclNameRefusal(const std::string& name);
/// Whether a URL has a password, or the user of a web server in it; that somebody is "git" to another one is no secret.
PLAZ_API bool holdsLogin(const std::string& url);
/// The text with "***" in every URL in it, in the place of all that stands before its last "@" ("//user:token@") and of
/// each value behind "?" or "#". It may hide more than secrets.
PLAZ_API std::string maskSecrets(const std::string& text);
/// The same of one proxy, which may come without a scheme and with a user part all the same.
PLAZ_API std::string maskProxy(const std::string& proxy);

} // namespace HSCPlazTrust
