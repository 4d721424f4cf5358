#pragma once

#include <cmath>
#include <numbers>

#include "numerics/Vector.h"

namespace tavoren::simulator {

/// What surrounds the device, in the world's axes: east, north, up.
struct World {
    double field = 500.0;       ///< size of the magnetic field, milligauss
    double dip = 55.0;          ///< of the field below the horizon, degrees
    double disturbance = 25.0;  ///< what is added at the end of the way, milligauss

    /// What an accelerometer at rest shows, in g.
    static Vector gravity() { return {0.0, 0.0, 1.0}; }
    /// At a share of the way through the disturbance.
    Vector fieldAt(double place) const {
        const double radians = dip * std::numbers::pi / 180.0;
        const Vector undisturbed{0.0, field * std::cos(radians), -field * std::sin(radians)};
        return undisturbed + Vector{0.6, 0.64, 0.48} * (disturbance * place);
    }
};

}  // namespace tavoren::simulator
