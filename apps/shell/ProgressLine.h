#pragma once

#include <cstddef>
#include <string>

class HDGUIStatus;

/// The line on the terminal (standard error) that shows how far long work has come. On anything but a terminal there
/// is none. Whoever writes to the terminal meanwhile erases the line first.
class ProgressLine {
public:
    /// @param columns  width of the terminal; 0 keeps the line away
    explicit ProgressLine(int columns) : m_columns(columns > 0 ? static_cast<std::size_t>(columns) : 0) {}
    ~ProgressLine() { erase(); }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    /// From now on the line begins with "2/5". One of one is not worth saying.
    void beginPart(std::size_t number, std::size_t count);
    void show(const HDGUIStatus& status);
    void erase();

private:
    std::size_t m_columns;
    std::string m_part;
    std::string m_shown;
};
