#pragma once

#include "plaz/model/reader/HSCPlazBaseWriter.h"

/// A writer of JSON files.
template <typename T> class HSCPlazJsonWriter : public HSCPlazBaseWriter<T> {
public:
    bool write(const std::string& file, T* model) override = 0;
};
