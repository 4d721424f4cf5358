#pragma once

#include <span>

#include "common/SensorSample.h"
#include "numerics/Vector.h"

namespace tavoren {

/// What a fit of an ellipse in a plane leaves besides its centre.
struct PlanarEllipse {
    Vector principalScales = {1.0, 1.0};  ///< the two semi-axes, units of the points
};

/// Fits a conic to points (x, y) by linear least squares and turns it upright; `centre` gets 2
/// elements. Throws `MathException` for a parabola, a hyperbola or points without a usable tilt;
/// points that determine no conic may also give non-finite results.
void fit_ellipse(std::span<const Vector> points, PlanarEllipse& ellipse, Vector& centre);

/// The same for 3-axis samples of a turn about a single axis, in the order of the movement: they
/// are projected on the plane through the means of their three thirds. `centre` gets 3 elements.
void fitPlanarEllipse(std::span<const SensorSample> samples, PlanarEllipse& ellipse,
                      Vector& centre);

}  // namespace tavoren
