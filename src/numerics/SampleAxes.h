#pragma once

#include <array>
#include <cstddef>

#include "common/SensorSample.h"

namespace tavoren {

/// The x, y and z value of a sample; 0.0 for one that it lacks.
inline std::array<double, 3> axesOf(const SensorSample& sample) {
    const SampleValues& values = sample.values;
    if (values.size() == 3) [[likely]]  // straight, for passes over many samples
        return {values[0], values[1], values[2]};
    std::array<double, 3> axes{};
    for (std::size_t k = 0; k < values.size() && k < axes.size(); ++k)
        axes[k] = values[k];
    return axes;
}

}  // namespace tavoren
