#pragma once

#include <span>

#include "common/SensorSample.h"
#include "numerics/Vector.h"

namespace tavoren {

/// The coefficients p0 to p8 of the ellipsoid through the samples, in the sense of least squares:
///     x^2 + p3 xy + p4 xz + p5 yz + p6 y^2 + p7 z^2 - p0 x - p1 y - p2 z - p8 = 0
/// Usually non-finite when the samples span no volume. The samples are neither centred nor scaled;
/// one pass, and no memory that grows with their number.
Vector ellipsoidCoefficients(std::span<const SensorSample> samples);

}  // namespace tavoren
