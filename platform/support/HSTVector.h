#pragma once

#include <vector>

/// The host's sequence container. Where it holds raw pointers, the object that owns the vector says who owns them.
template <typename T> using HSTVector = std::vector<T>;
