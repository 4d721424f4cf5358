#include "numerics/Rotation.h"

#include <algorithm>
#include <cmath>

#include "numerics/LookUp.h"

namespace tavoren {

namespace {

constexpr double halfPi = 1.5707963267948966;
constexpr double smallest = 0.0001;  // below it the antisymmetric part names no axis

Vector halfTurn(const Matrix& r) {
    Vector result(3);
    result[indexOfMaxMagnitude(r) / 3] = halfPi;
    return result;
}

}  // namespace

Matrix updateRotationMatrix(const Matrix& r, const Vector& w) {
    refuseUnless3x3(r);
    Vector r0 = row(r, 0);
    Vector r1 = row(r, 1);
    r0 -= vector3CrossProduct(w, r0);
    r1 -= vector3CrossProduct(w, r1);
    r1 -= r0 * dot(r0, r1);
    const Vector r2 = vector3CrossProduct(r0, r1);
    return fromRows({normalized(r0), normalized(r1), normalized(r2)});
}

Vector rotationVectorFromMatrix(const Matrix& r) {
    refuseUnless3x3(r);
    const double t = trace(r);
    const Vector a = {r(2, 1) - r(1, 2), r(0, 2) - r(2, 0), r(1, 0) - r(0, 1)};
    if (norm(a) < smallest)
        return std::abs(t - 3.0) < smallest ? Vector(3) : halfTurn(r);
    const double theta = acos_lut((std::clamp(t, -3.0, 3.0) - 1.0) * 0.5);
    return a * (theta / (sin_lut(theta) * 2.0));
}

}  // namespace tavoren
