#pragma once

#include "plaz/model/reader/HSCPlazBaseReader.h"

/// A reader of JSON files. Readers hold nothing between calls and never throw for bad content: what is wrong with a
/// file is reported, a member that is absent leaves its field as it was, one of the wrong type empties it, and unknown
/// members are passed over.
template <typename T> class HSCPlazJsonReader : public HSCPlazBaseReader<T> {
public:
    bool parse(const std::string& file, T* model) override = 0;
};
