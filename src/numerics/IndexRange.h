#pragma once

#include <cstdint>

namespace tavoren {

/// Indices of a sample buffer, both inclusive.
struct IndexRange {
    std::int32_t first = 0;
    std::int32_t last = 0;

    friend bool operator==(const IndexRange&, const IndexRange&) = default;
};

}  // namespace tavoren
