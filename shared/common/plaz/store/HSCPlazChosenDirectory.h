#pragma once

#include "plaz/base/HSCPlazReport.h"

#include <string>

class HSCPlazQStore;

/// Directories that users choose for stores.
namespace HSCPlazChosenDirectory {

/// Makes sure that a directory is there and writable. An empty name is.
/// @param report  Msg::dirNotWritable or dirNotCreated where it is not; dirCreated where it was made
bool prepare(const std::string& dir, HSCPlazReport& report);
/// Another store of the same hub that uses the directory; null for none, and for a store without a hub.
const HSCPlazQStore* findUser(const HSCPlazQStore& store, const std::string& dir);

} // namespace HSCPlazChosenDirectory
