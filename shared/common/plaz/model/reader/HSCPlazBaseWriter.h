#pragma once

#include <string>

/// Writes a model into a file.
template <typename T> class HSCPlazBaseWriter {
public:
    virtual ~HSCPlazBaseWriter() = default;

    /// @param model  null gives false at once
    virtual bool write(const std::string& file, T* model) = 0;
};
