#include <gtest/gtest.h>

#include <random>

#include "common/CalibrationException.h"
#include "numerics/NormalEquations.h"
#include "sensors/ExpectThrow.h"
#include "sensors/MagneticField.h"

namespace tavoren {
namespace {

constexpr int perSegment = 400;
constexpr double fieldSize = 450.0;
constexpr double dipDegrees = 58.0;

/// The field in each segment of the full sequence; the odd ones are turns.
Vector fieldAt(int segment, double fraction) {
    constexpr std::array<std::pair<int, double>, 6> turns{{{2, 360.0}, {0, 90.0}, {1, 360.0}, {2, 90.0}, {0, 360.0}, {2, 90.0}}};
    Vector field = northernField(fieldSize, dipDegrees);
    for (int k = 1; k <= segment; k += 2) {
        const auto [axis, degrees] = turns[static_cast<std::size_t>(k / 2)];
        field = afterTurn(field, axis, degrees * (k == segment ? fraction : 1.0));
    }
    return field;
}

/// The standard deviations that noise (mG) leaves at most in the least squares estimates of centre
/// (mG) and shape (relative) from these directions.
std::array<double, 2> spreadOf(double noise) {
    NormalEquations<9> equations;
    for (int k = 0; k < 13 * perSegment; ++k) {
        const Vector field = fieldAt(k / perSegment, k % perSegment / 400.0);
        const double x = field[0] / fieldSize;
        const double y = field[1] / fieldSize;
        const double z = field[2] / fieldSize;
        equations.add({x, y, z, x * x, y * y, z * z, 2.0 * x * y, 2.0 * x * z, 2.0 * y * z}, 0.0);
    }
    const Matrix covariance = inverse(equations.gram());
    std::array<double, 2> variances{};
    for (int i = 0; i < 9; ++i)
        variances[i / 3 > 0] = std::max(variances[i / 3 > 0], covariance(i, i));
    return {noise * std::sqrt(variances[0]), noise * std::sqrt(variances[1]) / fieldSize};
}

TEST(Magnetometer, RecoversHardAndSoftIronWithinTheNoise) {
    const Matrix softIron(3, 3, {1.05, 0.02, -0.015, 0.02, 0.94, 0.025, -0.015, 0.025, 1.02});
    const Matrix mapping(3, 3, {0, 1, 0, -1, 0, 0, 0, 0, 1});
    const Matrix shape = inverse3(softIron);
    const Matrix expected = inverse3(mapping) * shape * (3.0 / trace(shape));
    const Vector hardIron{120.0, -260.0, 75.0};
    const auto [centreSpread, shapeSpread] = spreadOf(0.3);
    for (const Place& place : places) {
        FakeRun run(SequenceKind::full);
        Magnetometer sensor(staticMagnetometer);
        sensor.setSensorManager(run);
        place.apply(sensor);
        std::mt19937 random{7};
        std::normal_distribution<double> noise(0.0, 0.3);
        run.fillSegments(sensor, perSegment, [&](int segment, int k) {
            const Vector body = place.body * fieldAt(segment, k / 400.0);
            const Vector clean = hardIron + softIron * (mapping * body);
            return valuesOf(clean + Vector{noise(random), noise(random), noise(random)});
        });
        sensor.calibrate();
        // Five standard deviations, and the steps of 1e-4 of the trigonometric tables.
        for (int axis = 0; axis < 3; ++axis)
            EXPECT_NEAR(sensor.offset[axis], hardIron[axis], 5.0 * centreSpread);
        const Matrix found = sensor.scaleMatrix * sensor.axisMapping;
        for (int i = 0; i < 9; ++i)
            EXPECT_NEAR(found(i / 3, i % 3), expected(i / 3, i % 3), 5.0 * shapeSpread + 2e-4);
        // The arc cosine takes angles below 0.0141 for none.
        EXPECT_NEAR(std::atan2(sensor.sinDip, sensor.cosDip), dipDegrees * radiansPerDegree, 0.015);
        EXPECT_EQ(sensor.calibrationData.size(), 40U);
    }
}

TEST(Magnetometer, DegenerateSamplesEndInItsOwnTexts) {
    const Matrix alongOneAxis(3, 3, {1, 0, 0, 0, 0, 0, 0, 0, 0});
    const Matrix inOnePlane(3, 3, {1, 0, 0, 0, 1, 0, 0, 0, 0});
    for (const auto& [count, change] : std::vector<std::pair<int, Matrix>>{
             {20, Matrix(3, 3)},
             {20, alongOneAxis},
             {20, inOnePlane},
             {20, identity(3) * std::numeric_limits<double>::quiet_NaN()},
             {20, identity(3) * 1e150},
             {20, identity(3) * 1e305},
             {2, identity(3)},  // turns without samples
         }) {
        FakeRun run(SequenceKind::full);
        Magnetometer sensor(staticMagnetometer);
        sensor.setSensorManager(run);
        run.fillSegments(sensor, count, [&change = change](int segment, int k) {
            return valuesOf(change * fieldAt(segment, k / 20.0) + Vector{1.0, 2.0, 3.0});
        });
        EXPECT_EQ(textOf<CalibrationException>([&] { sensor.calibrate(); }),
                  "Failed to calc magnetometer values, check your magnetic environment");
        EXPECT_TRUE(sensor.calibrationData.empty());
    }
}

TEST(Magnetometer, ThinsBySpaceAndNotByTime) {
    const std::vector<SensorSample> samples{{0.0, {0, 0, 0}}, {1.0, {3, 0, 0}}, {2.0, {0, 4, 0}},
                                            {3.0, {0, 4, 0}}, {4.0, {3, 4, 0}}, {5.0, {3, 4, 5}}};
    for (const auto& [distance, count] : {std::pair(0.0, 5U), {3.0, 3U}, {5.0, 2U}, {1e9, 1U}})
        EXPECT_EQ(Magnetometer::decimateSamples(samples, distance).size(), count) << distance;
}

TEST(Magnetometer, JudgesTheSizeOfTheField) {
    const std::string found = "Calculated magnetic field is too ";
    for (const auto& [size, reasons] : std::vector<std::pair<double, std::string>>{
             {199.0, found + "low.\n "}, {200.0, ""}, {650.0, ""}, {651.0, found + "high.\n "}}) {
        Magnetometer sensor(staticMagnetometer);
        sensor.buildExpectedValues(0.0, size);
        EXPECT_ANY_THROW(sensor.checkSuccess(Matrix(0, 3)));  // of the zero scale, if no other
        EXPECT_EQ(sensor.failureReasons.substr(0, sensor.failureReasons.find("Calculated scale")), reasons);
    }
}

}  // namespace
}  // namespace tavoren
