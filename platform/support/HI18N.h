#pragma once

#include "support/HostExport.h"

#include <string>

/// Converts texts between the forms in which user interfaces and programs hold them. Pure functions. What no text can
/// hold (a half of a pair of code units, bytes that are no UTF-8) becomes U+FFFD, one for each unit or byte.
class HOST_API HI18N {
public:
    /// UTF-8 of a wide text, whose elements are UTF-16 code units or whole characters.
    static std::string convert(const std::wstring& text);
    /// The UTF-16 code units of a text in UTF-8, one in each element.
    static std::wstring convert(const std::string& text);
};
