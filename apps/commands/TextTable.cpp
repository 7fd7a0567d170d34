#include "TextTable.h"

#include "support/HUTText.h"

#include <algorithm>
#include <ostream>
#include <sstream>

namespace {

constexpr std::size_t gap = 2;

using Row = std::vector<std::string>;
using Paint = std::function<std::string(const std::string&)>;

void widen(std::vector<std::size_t>& widths, const Row& row) {
    if (widths.size() < row.size()) widths.resize(row.size());
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], HUTText::width(row[i]));
}

void printRow(std::ostream& out, const Row& row, const std::vector<std::size_t>& widths, const Paint& paint = {}) {
    std::string line;
    std::size_t blanks = 0;
    for (std::size_t i = 0; i < row.size(); ++i) {
        // Blanks wait for the next text, so that no line ends in them.
        if (!row[i].empty()) line.append(blanks, ' ').append(i == 0 && paint ? paint(row[i]) : row[i]);
        blanks = (row[i].empty() ? blanks : 0) + widths[i] - HUTText::width(row[i]) + gap;
    }
    out << line << '\n';
}

} // namespace

TextTable::TextTable(std::vector<std::string> header) : m_header(std::move(header)) {}

void TextTable::addRow(const Row& cells) {
    Row row;
    for (const std::string& cell : cells) row.push_back(HUTText::printable(cell));
    m_rows.push_back(std::move(row));
}

void TextTable::print(std::ostream& out, const Paint& paint) const {
    if (m_rows.empty()) return;
    std::vector<std::size_t> widths;
    widen(widths, m_header);
    for (const Row& row : m_rows) widen(widths, row);
    if (!m_header.empty()) printRow(out, m_header, widths);
    for (const Row& row : m_rows) printRow(out, row, widths, paint);
}

std::string TextTable::toText() const {
    std::ostringstream out;
    print(out);
    std::string text = out.str();
    if (!text.empty()) text.pop_back();
    return text;
}
