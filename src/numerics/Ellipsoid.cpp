#include "numerics/Ellipsoid.h"

#include <algorithm>
#include <cmath>

#include "common/MathException.h"
#include "numerics/Eigenvalues.h"
#include "numerics/EllipsoidFit.h"
#include "numerics/SampleAxes.h"

namespace tavoren {

namespace {

Matrix diagonal(const Vector& v) {
    Matrix m(v.size(), v.size());
    for (int i = 0; i < v.size(); ++i)
        m(i, i) = v[i];
    return m;
}

Vector reciprocals(Vector v) {
    for (double& x : v)
        x = 1.0 / x;
    return v;
}

Vector centerOf(const Vector& p) {
    const Matrix m(3, 3, {2.0, p[3], p[4], p[3], 2.0 * p[6], p[5], p[4], p[5], 2.0 * p[7]});
    return Vector{p[0], p[1], p[2]} * inverse(m);
}

// The symmetric matrix A of the ellipsoid (v - center) A (v - center) = 1.
Matrix quadraticForm(const Vector& p, const Vector& center) {
    const double x = center[0];
    const double y = center[1];
    const double z = center[2];
    const double s = 1.0 / (x * x + p[8] + p[6] * (y * y) + p[7] * (z * z) + p[3] * x * y +
                            p[4] * x * z + p[5] * y * z);
    const double xy = p[3] / 2.0;
    const double xz = p[4] / 2.0;
    const double yz = p[5] / 2.0;
    return Matrix(3, 3, {1.0, xy, xz, xy, p[6], yz, xz, yz, p[7]}) * s;
}

Vector eigenvaluesOfEllipsoid(const Matrix& form) {
    Vector e = symmetricEigenvalues3(form);
    if (std::any_of(e.begin(), e.end(), [](double x) { return x < 0.0; }))
        throw MathException("The calculated eigen values of the ellipsoid are not correct");
    return e;
}

}  // namespace

Ellipsoid::Ellipsoid(std::span<const SensorSample> samples, double radius) {
    fit(samples);
    principalScales = principalScales * meanScale * radius;
    principalLengths = reciprocals(principalScales);
    scaleMatrix = diagonal(principalScales) * axes;
}

void Ellipsoid::reset() {
    const double keptScale = meanScale;
    *this = Ellipsoid();
    meanScale = keptScale;
}

void Ellipsoid::fit(std::span<const SensorSample> samples) {
    reset();
    const Vector p = ellipsoidCoefficients(samples);
    center = centerOf(p);
    setShape(quadraticForm(p, center));
}

void Ellipsoid::setShape(const Matrix& form) {
    const Vector e = eigenvaluesOfEllipsoid(form);
    principalScales = elementSqrt(e);
    meanScale = sum(principalScales) / 3.0;
    principalScales = principalScales / meanScale;
    principalLengths = reciprocals(principalScales);
    if (!isNearlyDiagonal(form)) {
        for (int k = 0; k < 3; ++k)
            axes.setRow(k, rowToVector(eigenvector3(form, e[k])));
    }
    scaleMatrix = transpose(axes) * diagonal(principalScales) * axes;
}

Vector Ellipsoid::apply(const Vector& values) const {
    return scaleMatrix * (values - center);
}

double Ellipsoid::meanRadialError(std::span<const SensorSample> samples, double radius) const {
    double total = 0.0;
    for (const SensorSample& sample : samples)
        total += std::abs(norm(apply(Vector(axesOf(sample)))) - radius);
    return total / static_cast<double>(samples.size());
}

}  // namespace tavoren
