#pragma once

#include <cstdint>

namespace tavoren {

/// What a run of the tool does.
enum class RunMode : std::int32_t {
    none = 0,  ///< export or import of calibration data
    calibrate = 1,
    ambientLight = 2,
    magneticTest = 3,
    test = 4,
};

}  // namespace tavoren
