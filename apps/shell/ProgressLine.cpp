#include "ProgressLine.h"

#include "support/HDGUIStatus.h"
#include "support/HUTText.h"

#include <cmath>
#include <iostream>

namespace {

std::string textOf(const HDGUIStatus& status) {
    const std::string& text =
        status.getStatusMessage().empty() ? status.getAbbrevStatusMessage() : status.getStatusMessage();
    if (!status.isDeterminate()) return text;
    const std::string percent = std::to_string(std::lround(status.getPercentComplete()));
    return std::string(percent.size() < 3 ? 3 - percent.size() : 0, ' ') + percent + "% " + text;
}

} // namespace

void ProgressLine::beginPart(std::size_t number, std::size_t count) {
    if (count > 1) m_part = std::to_string(number) + "/" + std::to_string(count) + " ";
}

void ProgressLine::show(const HDGUIStatus& status) {
    if (m_columns == 0) return;
    // The last column stays free: a full line would make the terminal begin another one.
    const std::string text = HUTText::cutToWidth(HUTText::printable(m_part + textOf(status)), m_columns - 1);
    if (text == m_shown) return;
    erase();
    m_shown = text;
    std::cerr << m_shown << std::flush;
}

void ProgressLine::erase() {
    if (m_shown.empty()) return;
    std::cerr << '\r' << std::string(HUTText::width(m_shown), ' ') << '\r' << std::flush;
    m_shown.clear();
}
