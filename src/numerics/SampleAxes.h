#pragma once

#include <array>
#include <cstddef>

#include "common/SensorSample.h"

namespace tavoren {

/// The x, y and z value of a sample; 0.0 for one that it lacks.
inline std::array<double, 3> axesOf(const SensorSample& sample) {
    std::array<double, 3> axes{};
    for (std::size_t k = 0; k < sample.values.size() && k < axes.size(); ++k)
        axes[k] = sample.values[k];
    return axes;
}

}  // namespace tavoren
