#pragma once

#include "plaz/base/HSCPlazLimits.h"
#include "plaz/base/HSCPlazReport.h"

#include <string>

/// Whether a file can be trusted to be whole JSON.
namespace HSCPlazJsonCheck {

/// What is wrong with a file that should be there, be a regular file and parse as JSON: Msg::fileNameEmpty,
/// fileMissing, limitExceeded or fileNotJson. Empty when nothing is, for a protected file, which passes unread, and for
/// any name at all while the parameter "plaz.enableJsonFileValidation" is off.
HSCPlazReport findProblem(const std::string& file, HSCPlazLimits::File kind);

/// The same of a metadata file that was fetched or installed; an empty name is a problem as well, whatever the
/// parameter says, but none that could be told.
/// @param problem  what is to be told is added
bool isWhole(const std::string& file, HSCPlazLimits::File kind, HSCPlazReport& problem);

} // namespace HSCPlazJsonCheck
