#pragma once

#include <string>

/// Fills a model from a metadata file.
template <typename T> class HSCPlazBaseReader {
public:
    virtual ~HSCPlazBaseReader() = default;

    /// @param model  filled as far as the file goes; null gives false at once
    virtual bool parse(const std::string& file, T* model) = 0;
};
