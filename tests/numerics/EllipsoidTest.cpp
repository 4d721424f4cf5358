#include "numerics/Ellipsoid.h"

#include <gtest/gtest.h>

#include <cmath>

#include "common/MathException.h"
#include "numerics/NormalEquations.h"
#include "numerics/PlanarEllipseFit.h"

namespace tavoren {
namespace {

// Points spread evenly over the unit sphere, mapped to shape * p + centre.
std::vector<SensorSample> samplesOn(const Matrix& shape, const Vector& centre, int count = 500) {
    std::vector<SensorSample> samples;
    for (int i = 0; i < count; ++i) {
        const double z = 1.0 - (2.0 * i + 1.0) / count;
        const double r = std::sqrt(1.0 - z * z);
        const Vector p = shape * Vector{r * std::cos(2.4 * i), r * std::sin(2.4 * i), z} + centre;
        samples.push_back({0.0, {p[0], p[1], p[2]}});
    }
    return samples;
}

TEST(EllipsoidTest, FindsCentreAndShapeOfGeneratedEllipsoids) {
    const Vector centre = {0.0, 8.0, -2.0};
    const Matrix tilted(3, 3, {4.0, 0.5, 0.3, 0.5, 5.0, -0.4, 0.3, -0.4, 3.0});
    for (const Matrix& shape : {identity(3), tilted}) {
        const auto samples = samplesOn(shape, centre);
        Ellipsoid fitted;
        fitted.fit(samples);
        EXPECT_LT(maxAbs(fitted.center - centre), 1e-7) << listText(fitted.center);
        EXPECT_NEAR(sum(fitted.principalScales), 3.0, 1e-12);
        EXPECT_LT(fitted.meanRadialError(samples, 1.0 / fitted.meanScale), 0.01);
        const Ellipsoid sized(samples, 2.5);
        EXPECT_LT(sized.meanRadialError(samples, 2.5), 0.01);
        EXPECT_NEAR(norm(sized.apply(shape * Vector{0.6, 0.0, 0.8} + centre)), 2.5, 0.02);
    }
    Ellipsoid upright;  // its axes are beyond the eigenvectors, its lengths are not
    upright.fit(samplesOn(Matrix(3, 3, {1.0, 0.0, 0.0, 0.0, 4.0, 0.0, 0.0, 0.0, 2.0}), centre));
    const Vector lengths = upright.principalLengths / upright.meanScale;
    EXPECT_LT(maxAbs(lengths - Vector{4.0, 2.0, 1.0}), 0.01) << listText(lengths);
}

TEST(EllipsoidTest, NormalEquationsHaveTheDigitsOfTheDesignMatrix) {
    const auto samples = samplesOn(identity(3), {0.3, 0.2, -20.7}, 77);
    Matrix design(77, 3);
    Vector right(77);
    NormalEquations<3> equations;
    for (int i = 0; i < 77; ++i) {
        const auto& v = samples[static_cast<std::size_t>(i)].values;
        design.setRow(i, Vector(v));
        right[i] = v[0] * v[2];
        equations.add({v[0], v[1], v[2]}, right[i]);
    }
    EXPECT_EQ(maxMagnitudeEntry(equations.gram() - gramMatrix(design)), 0.0);
    EXPECT_EQ(maxAbs(equations.solve() - right * design * inverse(gramMatrix(design))), 0.0);
}

TEST(EllipsoidTest, DegenerateSamplesAreRefused) {
    const std::vector<SensorSample> hole = {{0.0, {1.0, std::nan(""), 3.0}}, {1.0, {}}};
    for (const auto& samples : {hole, samplesOn(identity(3) * 1e200, Vector(3)), {}})
        EXPECT_THROW(Ellipsoid(samples, 1.0), MathException) << samples.size();
    std::vector<SensorSample> hyperboloid;
    for (const SensorSample& sample : samplesOn(identity(3), Vector(3))) {
        const auto [x, y, z] = std::array{sample.values[0], sample.values[1], sample.values[2]};
        const double h = std::sqrt(1.0 + z * z) / std::hypot(x, y);
        hyperboloid.push_back({0.0, {x * h, y * h, z}});
    }
    EXPECT_THROW(Ellipsoid().fit(hyperboloid), MathException);
    EXPECT_TRUE(std::isnan(Ellipsoid().meanRadialError({}, 1.0)));
}

TEST(PlanarEllipseFitTest, FindsCentreAndSemiAxes) {
    const Vector origin = {10.0, -20.0, 30.0};
    const Vector u = normalized(Vector{1.0, 2.0, -1.0});
    const Vector v = normalized(vector3CrossProduct(u, {0.0, 1.0, 0.0}));
    using Row = std::tuple<double, double, double, Vector>;
    for (const auto& [a, b, tilt, middle] : {Row{3.0, 3.0, 0.0, {0.0, 0.0}}, Row{4.0, 2.0, 0.0, {5.0, -1.0}},
                                             Row{4.0, 2.0, 0.5, {-3.0, 2.0}}, Row{1.0, 1.2, -0.7, {0.5, 0.5}}}) {
        std::vector<SensorSample> samples;
        const Matrix turn(2, 2, {std::cos(tilt), -std::sin(tilt), std::sin(tilt), std::cos(tilt)});
        for (double t = 0.0; t < 6.2; t += 0.05) {
            const Vector p = turn * Vector{a * std::cos(t), b * std::sin(t)} + middle;
            samples.push_back({0.0, SampleValues(origin + u * p[0] + v * p[1])});
        }
        PlanarEllipse ellipse;
        Vector centre;
        fitPlanarEllipse(samples, ellipse, centre);
        EXPECT_LT(maxAbs(centre - (origin + u * middle[0] + v * middle[1])), 5e-3) << listText(centre);
        const Vector& scales = ellipse.principalScales;
        EXPECT_NEAR(scales[0] + scales[1], a + b, 5e-3);
        EXPECT_NEAR(scales[0] * scales[1], a * b, 0.02);
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
