#pragma once

#include "support/HostExport.h"

#include <functional>

/// As long as it lives, the terminal that standard input is does not show what is typed. Elsewhere it changes nothing.
class HOST_API HUTHiddenInput {
public:
    HUTHiddenInput();
    ~HUTHiddenInput();
    HUTHiddenInput(const HUTHiddenInput&) = delete;
    HUTHiddenInput& operator=(const HUTHiddenInput&) = delete;

private:
    std::function<void()> m_restore;
};
