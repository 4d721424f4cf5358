#pragma once

#include "numerics/Vector.h"

namespace tavoren {

/// A quaternion, `w` being the scalar part; products are Hamilton products.
struct Quaternion {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    double w = 1.0;
};

/// The rotation `b` followed by the rotation `a`.
Quaternion operator*(const Quaternion& a, const Quaternion& b);

/// The rotation about `v` by its length in radians, right-handed; the unit for a zero vector.
/// REQUIRES: 3 elements.
Quaternion quaternionFromRotationVector(const Vector& v);

/// `v` turned by the unit quaternion `q`; throws `MathException` unless there are 3 elements.
Vector rotateByQuaternion(const Quaternion& q, const Vector& v);

}  // namespace tavoren
