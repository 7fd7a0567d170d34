#pragma once

#include "support/HSTVector.h"

#include <cstddef>
#include <utility>

/// The host's forward iterator: walks once over a copy of a sequence.
template <typename T> class HSTFwdIter {
public:
    explicit HSTFwdIter(HSTVector<T> elements) : m_elements(std::move(elements)) {}

    bool hasNext() const { return m_next < m_elements.size(); }
    /// The next element; a value-initialised one (null for pointers) at the end.
    T next() { return hasNext() ? m_elements[m_next++] : T(); }

private:
    HSTVector<T> m_elements;
    std::size_t m_next = 0;
};
