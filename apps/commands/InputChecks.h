#pragma once

#include <string>

// Why something that a person gave is of no use, as a sentence goes on with it; empty where it may be. They look at
// nothing but the value and the disk, so any thread may ask.

namespace inputChecks {

std::string findProxyRefusal(const std::string& value);
/// Of a hub or a store.
std::string findUrlRefusal(const std::string& value);
/// Of a directory that is to hold stores; it need not be there yet.
std::string findDirectoryRefusal(const std::string& value);
std::string findStoreNameRefusal(const std::string& value);

} // namespace inputChecks
