#include "support/HUTWait.h"

#include <utility>

namespace {

HUTWait::Around& installed() {
    static HUTWait::Around around;
    return around;
}

} // namespace

void HUTWait::setAround(Around around) {
    installed() = std::move(around);
}

bool HUTWait::hasAround() {
    return static_cast<bool>(installed());
}

void HUTWait::wait(const std::function<void()>& wait) {
    if (hasAround())
        installed()(wait);
    else
        wait();
}
