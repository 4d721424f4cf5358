#include "numerics/PlanarEllipseFit.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "common/MathException.h"
#include "numerics/LookUp.h"
#include "numerics/NormalEquations.h"
#include "numerics/SampleAxes.h"

namespace tavoren {

namespace {

/// a x^2 + b xy + c y^2 + d x + e y = 1 around the point (mx, my).
struct Conic {
    double a;
    double b;
    double c;
    double d;
    double e;
    double mx;
    double my;
};

struct Tilt {
    double cosine;
    double sine;
};

Conic fitConic(std::span<const Vector> points) {
    Vector mean(2);
    for (const Vector& point : points)
        mean += point;
    const auto n = static_cast<double>(points.size());
    const double mx = mean[0] / n;
    const double my = mean[1] / n;
    NormalEquations<5> equations;
    for (const Vector& point : points) {
        const double x = point[0] - mx;
        const double y = point[1] - my;
        equations.add({x * x, x * y, y * y, x, y}, 1.0);
    }
    const Vector p = equations.solve();
    return {p[0], p[1], p[2], p[3], p[4], mx, my};
}

bool isTilted(const Conic& conic) {
    return std::min(std::abs(conic.b / conic.a), std::abs(conic.b / conic.c)) > 0.001;
}

Tilt tiltOf(const Conic& conic) {
    const double phi = isTilted(conic) ? 0.5 * std::atan(conic.b / (conic.c - conic.a)) : 0.0;
    return {cosineOf(phi), sin_lut(phi)};
}

Conic turned(const Conic& conic, Tilt tilt) {
    const auto [a, b, c, d, e, mx, my] = conic;
    const auto [cp, sp] = tilt;
    return {.a = cp * a * cp - cp * b * sp + sp * c * sp,
            .b = 0.0,
            .c = sp * a * sp + cp * b * sp + cp * c * cp,
            .d = cp * d - sp * e,
            .e = cp * e + sp * d,
            .mx = cp * mx - sp * my,
            .my = cp * my + sp * mx};
}

// An ellipse has a > 0 on return.
Conic checkedEllipse(Conic conic) {
    const double test = conic.a * conic.c;
    if (test == 0.0)
        throw MathException("Parabola found, fit_ellipse: Did not locate an ellipse");
    if (test < 0.0)
        throw MathException("Hyperbola found, fit_ellipse: Did not locate an ellipse");
    if (conic.a < 0.0) {
        conic.a = -conic.a;
        conic.c = -conic.c;
        conic.d = -conic.d;
        conic.e = -conic.e;
    }
    return conic;
}

/// A plane through `origin` with two orthogonal unit vectors in it.
struct Plane {
    Vector origin;
    Vector u;
    Vector v;
};

Vector axesVector(const SensorSample& sample) {
    return Vector(axesOf(sample));
}

Plane planeOfThirds(std::span<const SensorSample> samples) {
    const std::size_t n = samples.size();
    const std::size_t third = n / 3;
    const auto m = static_cast<double>(third);
    Vector first(3);
    Vector last(3);
    Vector middle(3);
    for (std::size_t i = 0; i < third; ++i) {
        first += axesVector(samples[i]) / m;
        last += axesVector(samples[n - 1 - i]) / m;
        middle += axesVector(samples[third + i]) / m;
    }
    const Vector u = normalized(last - first);
    const Vector w = middle - first;
    return {first, u, normalized(w - u * dot(w, u))};
}

}  // namespace

void fit_ellipse(std::span<const Vector> points, PlanarEllipse& ellipse, Vector& centre) {
    const Conic fitted = fitConic(points);
    const Tilt tilt = tiltOf(fitted);
    const auto [a, b, c, d, e, mx, my] =
        checkedEllipse(isTilted(fitted) ? turned(fitted, tilt) : fitted);
    const double x0 = mx - d * 0.5 / a;
    const double y0 = my - e * 0.5 / c;
    const double f = 1.0 + d * d / (a * 4.0) + e * e / (c * 4.0);
    ellipse.principalScales = {std::sqrt(f / a), std::sqrt(f / c)};
    centre = Matrix(2, 2, {tilt.cosine, tilt.sine, -tilt.sine, tilt.cosine}) * Vector{x0, y0};
}

void fitPlanarEllipse(std::span<const SensorSample> samples, PlanarEllipse& ellipse,
                      Vector& centre) {
    const Plane plane = planeOfThirds(samples);
    std::vector<Vector> points;
    points.reserve(samples.size());
    for (const SensorSample& sample : samples) {
        const Vector p = axesVector(sample) - plane.origin;
        points.push_back({dot(p, plane.u), dot(p, plane.v)});
    }
    Vector center2;
    fit_ellipse(points, ellipse, center2);
    centre = plane.origin + plane.u * center2[0] + plane.v * center2[1];
}

}  // namespace tavoren
