#pragma once

#include <array>
#include <span>

#include "numerics/Matrix.h"

namespace tavoren {

/// A direction along one axis, for the tables of expected values: entries -1, 0 and 1.
using SignedAxis = std::array<int, 3>;

/// One row for each direction, `size` along it.
inline Matrix matrixOf(std::span<const SignedAxis> directions, double size) {
    Matrix matrix(static_cast<int>(directions.size()), 3);
    for (int i = 0; i < matrix.rows(); ++i)
        for (int axis = 0; axis < 3; ++axis)
            matrix(i, axis) =
                size * directions[static_cast<std::size_t>(i)][static_cast<std::size_t>(axis)];
    return matrix;
}

/// -1, 0 or 1.
inline double signOf(double x) {
    return x > 0.0 ? 1.0 : x < 0.0 ? -1.0 : 0.0;
}

}  // namespace tavoren
