#include "numerics/PlanarEllipseFit.h"

#include <gtest/gtest.h>

#include <cmath>

#include "common/MathException.h"
#include "numerics/Matrix.h"

namespace tavoren {
namespace {

struct Shape {
    double a, b, tilt;
    Vector centre;
};

const std::vector<Shape> shapes = {
    {3.0, 3.0, 0.0, {0.0, 0.0}}, {4.0, 2.0, 0.0, {5.0, -1.0}}, {4.0, 2.0, 0.5, {-3.0, 2.0}}, {1.0, 1.2, -0.7, {0.5, 0.5}}};

TEST(PlanarEllipseFitTest, FindsCentreAndSemiAxes) {
    for (const Shape& s : shapes) {
        const Vector u = normalized(Vector{1.0, 2.0, -1.0});
        const Vector v = normalized(vector3CrossProduct(u, {0.0, 1.0, 0.0}));
        const Vector origin = {10.0, -20.0, 30.0};
        std::vector<SensorSample> samples;
        const Matrix turn(2, 2, {std::cos(s.tilt), -std::sin(s.tilt), std::sin(s.tilt), std::cos(s.tilt)});
        for (double t = 0.0; t < 6.2; t += 0.05) {
            const Vector p = turn * Vector{s.a * std::cos(t), s.b * std::sin(t)} + s.centre;
            samples.push_back({0.0, SampleValues(origin + u * p[0] + v * p[1])});
        }
        PlanarEllipse ellipse;
        Vector centre;
        fitPlanarEllipse(samples, ellipse, centre);
        const Vector expected = origin + u * s.centre[0] + v * s.centre[1];
        EXPECT_LT(maxAbs(centre - expected), 5e-3) << listText(centre);
        const Vector& scales = ellipse.principalScales;
        EXPECT_NEAR(scales[0] + scales[1], s.a + s.b, 5e-3);
        EXPECT_NEAR(scales[0] * scales[1], s.a * s.b, 0.02);
    }
}

TEST(PlanarEllipseFitTest, OtherConicsAndTooFewPoints) {
    std::vector<Vector> hyperbola;
    for (const double t : {-1.5, -1.0, -0.5, 0.0, 0.5, 1.0, 1.5}) {
        hyperbola.push_back({std::cosh(t), std::sinh(t)});
        hyperbola.push_back({-std::cosh(t), std::sinh(t)});
    }
    PlanarEllipse ellipse;
    Vector centre;
    EXPECT_THROW(fit_ellipse(hyperbola, ellipse, centre), MathException);
    for (std::size_t count = 0; count < 6; ++count) {
        const std::vector<SensorSample> samples(count, {0.0, {1.0, 2.0, 3.0}});
        fitPlanarEllipse(samples, ellipse, centre);
        EXPECT_FALSE(std::isfinite(norm(centre))) << count;
    }
}

}  // namespace
}  // namespace tavoren
