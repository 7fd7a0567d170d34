#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

/// Rows of texts in aligned columns. Widths are those on a terminal; the last column is not filled up.
class TextTable {
public:
    /// @param header  titles of the columns; empty for a table without a header
    explicit TextTable(std::vector<std::string> header);
    /// Control characters in the cells are replaced. Rows may have fewer cells than there are columns.
    void addRow(const std::vector<std::string>& cells);
    /// Writes the table; nothing when it has no rows.
    /// @param paint  gives the first cell of each row as it is written, without a change of its width; may be empty
    void print(std::ostream& out, const std::function<std::string(const std::string&)>& paint = {}) const;
    /// What print() writes, without the last line's end.
    std::string toText() const;

private:
    std::vector<std::string> m_header;
    std::vector<std::vector<std::string>> m_rows;
};
