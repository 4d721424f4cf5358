#pragma once

#include "numerics/Matrix.h"
#include "numerics/Quaternion.h"
#include "numerics/Vector.h"

namespace tavoren {

/// The rotation matrix `r` after a small rotation `w` (radians): each row loses w x row, then the
/// rows are made orthogonal and of unit length again. The rows are thus the axes of the start as
/// the turned device sees them. Throws `MathException` unless 3 by 3 and 3 elements.
Matrix updateRotationMatrix(const Matrix& r, const Vector& w);

/// Axis times angle (radians) of a rotation matrix that turns column vectors. A half turn gives a
/// quarter turn's length at the position of the largest entry, row by row. Throws `MathException`
/// unless 3 by 3 and finite.
Vector rotationVectorFromMatrix(const Matrix& r);

}  // namespace tavoren
