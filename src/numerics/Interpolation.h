#pragma once

#include <span>
#include <vector>

#include "common/SensorSample.h"
#include "numerics/Vector.h"

namespace tavoren {

/// Index i with times[i] <= t < times[i + 1], by halving; some index from 0 to size - 2 when the
/// times do not ascend. REQUIRES: times[0] < t < last time. Throws `MathException` for less than
/// two times.
int findInterval(std::span<const double> times, double t);

/// Linear interpolation without extrapolation: before the first and behind the last time stands
/// their value. Throws `MathException` for empty lists or lists of different lengths.
double interpolate(std::span<const double> times, std::span<const double> values, double t);

/// The three axes of `source` at the time of each `target` sample; missing values are 0.0. Throws
/// `MathException` when `source` is empty and `target` is not.
std::vector<Vector> resampleAtTimes(std::span<const SensorSample> source,
                                    std::span<const SensorSample> target);

}  // namespace tavoren
