#pragma once

#include <string>

/// Whether @p text as a whole fits a pattern, case-sensitively: "*" stands for any characters, "?" for one, "[a-z]" for
/// one of a set and "[!a-z]" for one outside it. A "[" that no "]" closes stands for itself.
/// Takes time in proportion to the product of both lengths at worst.
bool fitsGlob(const std::string& pattern, const std::string& text);
