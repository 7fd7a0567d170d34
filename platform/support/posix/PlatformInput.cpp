#include "support/HUTHiddenInput.h"

#include <termios.h>
#include <unistd.h>

HUTHiddenInput::HUTHiddenInput() {
    termios shown{};
    if (tcgetattr(STDIN_FILENO, &shown) != 0) return;
    termios hidden = shown;
    hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    hidden.c_lflag |= ECHONL;
    if (tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden) == 0)
        m_restore = [shown] { tcsetattr(STDIN_FILENO, TCSAFLUSH, &shown); };
}

HUTHiddenInput::~HUTHiddenInput() {
    if (m_restore) m_restore();
}
