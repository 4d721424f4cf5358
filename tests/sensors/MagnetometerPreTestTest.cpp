#include <gtest/gtest.h>

#include <thread>

#include "common/CalibrationException.h"
#include "files/xml/XmlElement.h"
#include "sensors/ExpectThrow.h"
#include "sensors/MagneticField.h"

namespace tavoren {
namespace {

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
