#include "plaz/base/HSCPlazContext.h"

#include <utility>

namespace {

HSCPlazContext* inForce = nullptr;
void (*filler)() = nullptr;

} // namespace

HSCPlazContext& HSCPlazContext::get() {
    static HSCPlazContext nothing;
    if (!inForce && filler) std::exchange(filler, nullptr)();
    return inForce ? *inForce : nothing;
}

HSCPlazContext* HSCPlazContext::set(HSCPlazContext* context) {
    return std::exchange(inForce, context);
}

void HSCPlazContext::offer(void (*fill)()) {
    filler = fill;
}
