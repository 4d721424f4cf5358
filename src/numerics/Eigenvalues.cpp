#include "numerics/Eigenvalues.h"

#include <algorithm>
#include <cmath>

#include "common/MathException.h"
#include "numerics/LookUp.h"
#include "numerics/Statistics.h"

namespace tavoren {

namespace {

constexpr double pi = 3.141592653589793;
constexpr double thirdOfPi = 1.0471975511965976;
constexpr double thirdOfTurn = 2.0943951023931953;

double squared(double x) {
    return x * x;
}

void refuseUnlessSymmetric(const Matrix& m) {
    const double asymmetry =
        squared(m(0, 2) - m(2, 0)) + squared(m(0, 1) - m(1, 0)) + squared(m(1, 2) - m(2, 1));
    if (asymmetry > 1e-7)
        throw MathException("Matrix is not symmetric");
}

double angleOf(double r) {
    if (r <= -1.0)
        return thirdOfPi;
    if (r >= 1.0)
        return 0.0;
    return acos_lut(r) / 3.0;
}

}  // namespace

Vector symmetricEigenvalues3(const Matrix& m) {
    refuseUnless3x3(m);
    refuseUnlessSymmetric(m);
    const double p1 = squared(m(0, 1)) + squared(m(0, 2)) + squared(m(1, 2));
    if (p1 == 0.0)
        return {m(0, 0), m(1, 1), m(2, 2)};
    const double q = trace(m) / 3.0;
    const double p = std::sqrt(
        (squared(m(0, 0) - q) + squared(m(1, 1) - q) + squared(m(2, 2) - q) + 2.0 * p1) / 6.0);
    const Matrix b = (m - identity(3) * q) * (1.0 / p);
    const double phi = angleOf(determinant3(b) * 0.5);
    const double largest = q + 2.0 * p * cosineOf(phi);
    const double smallest = q + 2.0 * p * cosineOf(phi + thirdOfTurn);
    return {smallest, 3.0 * q - smallest - largest, largest};
}

Vector eigenvalues3Sorted(const Matrix& m) {
    refuseUnless3x3(m);
    if (isNearlyDiagonal(m))
        return {m(0, 0), m(1, 1), m(2, 2)};
    const double q = trace(m) / 3.0;
    const Matrix b = m - identity(3) * q;
    const double p = std::sqrt(trace((b * b) / 6.0));
    const double phi = acos_lut(determinant3(b / p) * 0.5) * 0.3333333333333333;
    Vector e(3);
    for (int k = 0; k < 3; ++k)
        e[k] = 2.0 * p * cosineOf(phi + 2.0 * k * pi / 3.0) + q;
    std::sort(e.begin(), e.end(), nanLast);
    return e;
}

Matrix eigenvector3(const Matrix& m, double e) {
    refuseUnless3x3(m);
    const Matrix n = inverse(Matrix(2, 2, {m(1, 1) - e, m(1, 2), m(2, 1), m(2, 2) - e}));
    const double y = -(m(0, 1) * n(0, 0) + m(0, 2) * n(1, 0));
    const double z = -(m(0, 1) * n(0, 1) + m(0, 2) * n(1, 1));
    return Matrix(1, 3, {1.0, y, z}) / std::sqrt(y * y + z * z + 1.0);
}

}  // namespace tavoren
