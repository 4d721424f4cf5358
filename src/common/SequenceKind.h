#pragma once

#include <cstdint>

namespace tavoren {

/// The movement sequence of a run.
enum class SequenceKind : std::int32_t {
    full = 0,
    minimal = 1,  ///< one position, face up
    fourSteps = 2,
    magAccuracy = 3,
    accelerometerOnly = 4,  ///< a full sequence in which only an accelerometer takes part
};

}  // namespace tavoren
