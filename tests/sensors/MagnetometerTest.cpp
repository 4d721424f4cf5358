#include "sensors/Magnetometer.h"

#include <gtest/gtest.h>

#include <random>
#include <thread>

#include "files/xml/XmlElement.h"
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

TEST(Magnetometer, RecoversHardAndSoftIronWithinTheNoise) {
    const Matrix softIron(3, 3, {1.05, 0.02, -0.015, 0.02, 0.94, 0.025, -0.015, 0.025, 1.02});
    const Matrix mapping(3, 3, {0, 1, 0, -1, 0, 0, 0, 0, 1});
    const Matrix shape = inverse3(softIron);
    const Matrix expected = inverse3(mapping) * shape * (3.0 / trace(shape));
    const Vector hardIron{120.0, -260.0, 75.0};
    // What noise of 0.3 mG leaves in the least squares estimates from these directions, as standard deviations: the square
    // roots of the largest diagonal elements of inverse(gram) of (x, y, z, xx, yy, zz, 2xy, 2xz, 2yz), fields of size 1.
    constexpr double centreSpread = 0.0456;  // mG
    constexpr double shapeSpread = 0.000113;
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
    const double nan = std::numeric_limits<double>::quiet_NaN();
    using Row = std::pair<int, Matrix>;
    for (const auto& [count, change] :
         {Row{20, Matrix(3, 3)}, Row{20, alongOneAxis}, Row{20, inOnePlane}, Row{20, identity(3) * nan},
          Row{20, identity(3) * 1e150}, Row{20, identity(3) * 1e305}, Row{2, identity(3)}}) {  // two: turns without samples
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

/// The range of the medians of 11, computed afresh.
double slowMedianRange(const SampleBuffer& samples, double since) {
    const int first = std::max(static_cast<int>(samples.countUpTo(since)) - 1, 0), last = static_cast<int>(samples.size()) - 1;
    double largest = std::numeric_limits<double>::min();
    for (int axis = 0; axis < 3; ++axis) {
        std::vector<double> medians;
        for (int i = first + 5; i <= last - 5; ++i)
            medians.push_back(medianOfRange(samples, {i - 5, i + 5})[axis]);
        const auto [low, high] = std::minmax_element(medians.begin(), medians.end());
        largest = medians.empty() ? largest : std::max(largest, *high - *low);
    }
    return largest;
}

TEST(Magnetometer, RotationIsDoneWhereTheWholeSpanSaysSo) {
    std::mt19937 random{3};
    std::uniform_real_distribution<double> step(-9.0, 10.0);
    std::uniform_int_distribution<int> choice(0, 99);
    FakeRun run(SequenceKind::full);
    Magnetometer sensor(staticMagnetometer);
    sensor.setSensorManager(run);
    EXPECT_FALSE(sensor.isRotationDone(0.0));
    double since = 0.0, time = 0.0;
    Vector field(3);
    for (int k = 0; k < 700; ++k) {
        field += {step(random), step(random), step(random)};
        const double spike = choice(random) < 5 ? 1000.0 : 0.0;
        sensor.dataRecieved({time, {field[0] + spike, -field[1], field[2]}});
        if (choice(random) < 80) {  // not every sample is looked at
            const double range = slowMedianRange(sensor.bufferedData, since);
            sensor.movementRangeLimit = 0.9999 * range;
            ASSERT_TRUE(sensor.isRotationDone(since)) << k;
            sensor.movementRangeLimit = range;  // strictly above only
            ASSERT_FALSE(sensor.isRotationDone(since)) << k;
        }
        if (choice(random) == 0)
            since = choice(random) < 50 ? time : 0.7 * time;  // the next turn, or an earlier one
        time += choice(random) < 10 ? 0.0 : 10.0;
    }
}

/// How a recording of four flat positions, each a quarter turn on, departs from a perfect one.
struct Fault {
    double heading = 0.0;    // degrees, all positions
    double lastTurn = 0.0;   // degrees too much
    double eastScale = 1.0;  // of the circle
    double shake = 0.0;      // mG on the first axis, in the second step
    double lift = 0.0;       // mG on the still axis, up in the first half and down in the second
};

bool passes(Magnetometer& sensor, FakeRun& run, const Fault& fault, const Place& place) {
    sensor.setSensorManager(run);
    place.apply(sensor);
    run.fillSegments(sensor, 50, [&](int segment, int k) {
        const double turned =
            segment / 2 * 90.0 + (segment % 2 == 1 ? 90.0 * k / 50 : 0.0) + (segment == 6 ? fault.lastTurn : 0.0);
        Vector field = afterTurn(northernField(450.0, 60.0), 2, turned + fault.heading);
        field[0] *= fault.eastScale;
        field[0] += segment == 2 ? (k % 2 == 0 ? fault.shake : -fault.shake) : 0.0;
        field[2] += segment < 4 ? fault.lift : -fault.lift;
        return valuesOf(place.body * field + Vector{30.0, -20.0, 10.0});
    });
    testing::internal::CaptureStdout();
    const bool passed = sensor.testCalibration();
    testing::internal::GetCapturedStdout();
    return passed;
}

TEST(MagnetometerAccuracy, EachTestFindsItsFaultAndAllRun) {
    using Names = std::vector<std::wstring>;
    using Row = std::pair<Fault, Names>;
    for (const auto& [fault, failing] :
         {Row{{.heading = -14.0}, {}}, Row{{.heading = 16.0}, {L"TestDirection"}},
          Row{{.lastTurn = 16.0}, {L"TestMagValues", L"TestDirection"}}, Row{{.eastScale = 0.89}, {}},
          Row{{.eastScale = 0.84}, {L"TestMagScale"}}, Row{{.shake = 14.9}, {}}, Row{{.shake = 15.1}, {L"TestMagSTD"}},
          Row{{.lift = 60.0}, {}}, Row{{.lift = 80.0}, {L"TestStaticValues"}}}) {
        FakeRun run(SequenceKind::magAccuracy, RunMode::test);
        Magnetometer sensor(staticMagnetometer);
        EXPECT_EQ(passes(sensor, run, fault, places.front()), failing.empty());
        EXPECT_EQ(run.failures.count("Magnetometer"), failing.empty() ? 0U : 1U);
        Names failed;
        for (const auto& section : sensor.logNode->children())
            if (section->toString().find(L" FAILED") != std::wstring::npos)
                failed.push_back(section->name.substr(std::size("Performing_") - 1));
        EXPECT_EQ(failed, failing);
        EXPECT_EQ(sensor.logNode->children().size(), 5U);
    }
}

TEST(MagnetometerAccuracy, HeadingsKnowThePlaceOfTheSensor) {
    for (const Place& place : places) {
        FakeRun run(SequenceKind::magAccuracy, RunMode::test);
        Magnetometer sensor(staticMagnetometer);
        EXPECT_TRUE(passes(sensor, run, {}, place)) << int{place.formFactor} << int{place.hinge};
    }
    EXPECT_EQ(listText(Magnetometer::wrapDegrees({-270.0, 360.0, 360.5, 800.0, 0.0})), listText({90.0, 360.0, 0.5, 440.0, 0.0}));
}

/// A magnetometer in the environment test.
struct PreTest {
    PreTest() { sensor.setSensorManager(run); }
    void add(const Vector& field) { sensor.dataRecieved({10.0 * count++, valuesOf(field)}); }
    /// A full turn; gives the number of samples after it.
    std::int32_t turn(int axis, double size = 450.0) {
        Vector field(3);
        field[axis] = 0.85 * size;
        field[(axis + 1) % 3] = -0.53 * size;
        for (int k = 0; k <= 60; ++k)
            add(afterTurn(field, axis, 6.0 * k));
        return count;
    }
    bool logs(std::wstring_view text) const { return sensor.logNode->toString().find(text) != std::wstring::npos; }

    FakeRun run{SequenceKind::full, RunMode::magneticTest};
    Magnetometer sensor{staticMagnetometer};
    std::int32_t count = 0;
};

TEST(MagnetometerPreTest, OneRotationMustGoRoundAndComeBack) {
    for (const auto& [range, difference, followed] : std::vector<std::tuple<double, double, bool>>{
             {400.0, 0.0, false}, {400.1, 0.0, true}, {500.0, 99.9, true}, {500.0, 100.0, false}}) {
        PreTest test;
        for (const Vector& field : {Vector(3), {range, -range, 5.0}, {difference, 0.0, 0.0}})
            test.add(field);
        std::int32_t axis = -1;
        EXPECT_EQ(test.sensor.checkMagPreTest_singleRotation(0, 2, axis), followed) << range;
        EXPECT_EQ(axis, 2);
        EXPECT_FALSE(test.sensor.checkMagPreTest_singleRotation(1, 1, axis));
        EXPECT_EQ(axis, 0);  // the first of equal ranges
        for (const auto& [first, last] : {std::pair{-1, 2}, {2, 1}, {0, 3}, {0, -1}})
            EXPECT_THROW(test.sensor.checkMagPreTest_singleRotation(first, last, axis), CalibrationException);
    }
}

TEST(MagnetometerPreTest, ThreeRotationsMustBeAboutThreeAxes) {
    for (const auto& [axes, followed] :
         std::vector<std::pair<std::vector<int>, bool>>{{{0, 1, 2}, true}, {{2, 0, 1}, true}, {{0, 1, 0}, false}}) {
        PreTest test;
        std::vector<std::int32_t> counts;
        for (const int axis : axes)
            counts.push_back(test.turn(axis));
        EXPECT_EQ(test.sensor.checkMagPreTest_threeRotations(counts), followed);
    }
    EXPECT_THROW(PreTest().sensor.checkMagPreTest_threeRotations({1, 2}), CalibrationException);
}

TEST(MagnetometerPreTest, TheTranslationMovesALittle) {
    EXPECT_THROW(PreTest().sensor.checkMagPreTest_translation(), CalibrationException);
    for (const auto& [moved, followed] : {std::pair(10.0, false), {10.1, true}, {39.9, true}, {40.0, false}}) {
        PreTest test;
        test.sensor.testPhase = true;
        for (const double x : {0.0, 900.0, moved})  // only the ends count
            test.add({x, 0.0, -300.0});
        EXPECT_EQ(test.sensor.checkMagPreTest_translation(), followed) << moved;
    }
}

TEST(MagnetometerPreTest, TheFitTellsWhyItFailed) {
    PreTest uneven;  // the field changes from turn to turn
    for (const int axis : {0, 1, 2})
        uneven.turn(axis, 300.0 + 150.0 * axis);
    EXPECT_EQ(textOf<CalibrationException>([&] { uneven.sensor.startMagPreTest(); }),
              "The environment is not good for calibrating, ellipsoid error is too high");
    EXPECT_TRUE(uneven.logs(L"FailureParameter=\"EllipsoidError\""));
    EXPECT_FALSE(uneven.sensor.testPhase);

    PreTest still;
    for (int k = 0; k < 3; ++k) {  // no samples, then the same one again and again
        EXPECT_EQ(textOf<CalibrationException>([&] { still.sensor.findFit(); }),
                  "Failed to calculate ellipsoid fit because of large magnetic interface. Check your environment");
        EXPECT_TRUE(still.logs(L"<Magnetic_Environment_Test FailureParameter=\"Ellipsoid\""));
        still.add({1.0, 2.0, 3.0});
    }
}

TEST(MagnetometerPreTest, TheVerdictLooksAtSpreadAndRange) {
    const std::string ok = "(nothing thrown)";
    const std::string bad = "The environment is not good for calibrating, dip angle ";
    for (const auto& [last, count, text] : std::vector<std::tuple<double, std::size_t, std::string>>{
             {67.0, 1, ok},  // a deviation of 3.5
             {67.1, 1, bad + "standard deviation is too high"},
             {77.0, 100, ok},
             {77.1, 100, bad + "range is too high"},
         }) {
        PreTest test;
        EXPECT_THROW(test.sensor.testEnvironment(), CalibrationException);  // no angles
        test.sensor.dipAngles.assign(count, 60.0);
        test.sensor.dipAngles.push_back(last);
        EXPECT_EQ(textOf<CalibrationException>([&] { test.sensor.testEnvironment(); }), text);
        EXPECT_EQ(test.logs(L"Success=\"true\""), text == ok);
    }
}

TEST(MagnetometerPreTest, ChecksRunBesideTheWorker) {
    PreTest test;
    const std::int32_t first = test.turn(0);
    std::thread worker([&] {
        for (int k = 0; k < 20; ++k)
            test.turn(1 + k % 2);
    });
    std::int32_t axis = -1;
    for (int k = 0; k < 50; ++k)
        EXPECT_TRUE(test.sensor.checkMagPreTest_singleRotation(0, first - 1, axis));
    while (!test.sensor.testPhase)  // the fit needs the second turn
        textOf<CalibrationException>([&] { test.sensor.startMagPreTest(); });
    worker.join();
    EXPECT_EQ(test.sensor.bufferedData.size() + test.sensor.dipAngles.size(), 21U * 61U);
}

}  // namespace
}  // namespace tavoren
