#pragma once

#include <cmath>
#include <span>
#include <vector>

#include "common/SensorSample.h"
#include "numerics/IndexRange.h"
#include "numerics/Vector.h"

namespace tavoren {

/// Ascending order with not-a-number last; an object, so that sorting can inline it.
inline constexpr auto nanLast = [](double a, double b) {
    return a < b || (std::isnan(b) && !std::isnan(a));
};

/// Population form sqrt(E[x^2] - m^2), so that rounding may make equal values give not-a-number,
/// as does an empty list.
double standardDeviation(std::span<const double> values);

/// Middle of the ascending order, mean of the two middle ones for an even number; not-a-number
/// sorts last and is the median of nothing.
double median(std::vector<double> values);

/// One median for each value of the first sample in the range; empty for an empty range. Throws
/// `CalibrationException` for a range outside of the buffer.
Vector medianOfRange(std::span<const SensorSample> buffer, IndexRange range);

// The largest of three axes over the samples of a range, the smallest positive double at least. An
// axis without a number never counts, a missing value is 0.0. Both throw `CalibrationException`
// for an index outside of the buffer.

/// Maximum minus minimum; 0.0 for an empty buffer.
double maxAxisRange(std::span<const SensorSample> buffer, IndexRange range);
/// `standardDeviation`.
double maxAxisDeviation(std::span<const SensorSample> buffer, IndexRange range);

}  // namespace tavoren
