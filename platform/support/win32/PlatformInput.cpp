#include "support/HUTHiddenInput.h"

#include <windows.h>

HUTHiddenInput::HUTHiddenInput() {
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    DWORD shown = 0;
    if (GetConsoleMode(input, &shown) && SetConsoleMode(input, shown & ~static_cast<DWORD>(ENABLE_ECHO_INPUT)))
        m_restore = [=] { SetConsoleMode(input, shown); };
}

HUTHiddenInput::~HUTHiddenInput() {
    if (m_restore) m_restore();
}
