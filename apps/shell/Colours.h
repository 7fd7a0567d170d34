#pragma once

#include "support/HUTSysCall.h"

#include <string>

/// Colours by severity, where somebody looks at a terminal that shows them.
class Colours {
public:
    /// What "--color" takes; "auto" goes by the terminal, NO_COLOR and TERM.
    static constexpr const char* choices = "auto|always|never";

    Colours(const std::string& choice, HUTSysCall::Stream stream);

    /// A message's label, an outcome or a state, in its colour where it has one.
    std::string paint(const std::string& word) const;

private:
    bool m_areShown;
};
