#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "files/xml/XmlAttribute.h"
#include "files/xml/XmlElement.h"
#include "sensors/Accelerometer.h"
#include "sensors/ExpectThrow.h"
#include "sensors/FakeRun.h"

namespace tavoren {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

using Change = std::function<void(InertialSensor&)>;

struct CheckRow {
    Change change;
    std::wstring parameter;
    std::string reasons;  // empty for a calibration that passes
};

std::wstring attributeOf(const InertialSensor& sensor, std::wstring_view name) {
    const XmlAttribute* const attribute = sensor.logNode->attribute(name);
    return attribute ? attribute->value : L"";
}

/// A perfect accelerometer, changed as the row says, judged by `judge`.
void judge(const CheckRow& row, SequenceKind kind, const Change& judgement) {
    FakeRun run(kind);
    Accelerometer sensor(secondOf(staticAccelerometer));
    sensor.setSensorManager(run);
    sensor.setDefaultLimits();
    sensor.buildExpectedValues();
    sensor.segmentValues = sensor.expectedValues;
    sensor.scaleMatrix = identity(3);
    sensor.axisMapping = identity(3);
    row.change(sensor);
    const std::string text = textOf<CalibrationException>([&] { judgement(sensor); });
    const bool passes = row.reasons.empty();
    EXPECT_EQ(text, passes ? "(nothing thrown)" : "Calibration failed for sensor Accelerometer_2. Reason: " + row.reasons);
    EXPECT_EQ(attributeOf(sensor, L"FailureParameter"), row.parameter) << row.reasons;
    EXPECT_EQ(attributeOf(sensor, L"Success"), passes ? L"true" : L"false") << row.reasons;
}

const std::string offsetReason = "Calculated offset is too high.\n";
const std::string scaleReason = "Calculated scale is too high.\n";
const std::string rotationReason = "Calculated rotation is too high.\n";
const std::string noiseReason = "Calculated white noise is too high.\n";

Change noise(double x, double y, double z) {
    return [=](InertialSensor& s) { s.whiteNoise = Vector({x, y, z}); };
}

/// One element of the scale matrix, with the measured positions as they were.
Change scaleElement(int row, int column, double value) {
    return [=](InertialSensor& s) { s.scaleMatrix(row, column) = value; };
}

/// Scale and positions that agree: the calibrated values stay as expected.
Change scaledBy(const Matrix& scale) {
    return [=](InertialSensor& s) {
        s.scaleMatrix = scale;
        s.segmentValues = s.segmentValues * transpose(inverse3(scale));
    };
}

Change measuredTimes(double factor) {
    return [=](InertialSensor& s) { s.segmentValues = s.segmentValues * factor; };
}

const Matrix singularMapping(3, 3, {1, 0, 0, 0, 1, 0, 0, 1, 0});

TEST(InertialChecks, FullCheckNamesTheFirstFailureAndListsAll) {
    const std::string error = "Expected error vs calibrated is too high.\n";
    const std::string spread = "Calculated norm standard deviation is too high.\n";
    const std::wstring errorName = L"expected error vs calibrated";
    const auto farOff = [](InertialSensor& s) {
        s.offset[1] = -0.31;
        for (int i = 0; i < 4; ++i)
            s.segmentValues(i, 1) -= 0.31;
        s.whiteNoise[0] = 0.02;
    };
    for (const CheckRow& row : {
             CheckRow{noise(0.0, 0.015, -0.015), L"", ""},
             CheckRow{noise(0.0, 0.0, -0.016), L"White Noise", noiseReason},
             CheckRow{farOff, L"Offset1", offsetReason + noiseReason},
             CheckRow{[](InertialSensor& s) { s.segmentValues(1, 1) *= 1.01; }, L"norm standard deviation", spread + error},
             CheckRow{measuredTimes(0.97), errorName, error + "Calculated norm value is too low.\n"},
             CheckRow{measuredTimes(1.03), errorName, error + "Calculated norm value is too high.\n"},
             CheckRow{[](InertialSensor& s) { s.offset[2] = nan; }, L"Offset1", offsetReason},
             CheckRow{scaleElement(1, 2, nan), L"Scale", scaleReason + rotationReason},
             CheckRow{[](InertialSensor& s) { s.axisMapping = singularMapping; }, L"norm standard deviation",
                      spread + error + "Irreversible axis mapping matrix created.\n" + "Calculated norm value is too low.\n"},
             CheckRow{scaledBy(identity(3) * 0.45), L"Scale", scaleReason + "Irreversible scale matrix created.\n"},
         })
        judge(row, SequenceKind::full, [](InertialSensor& s) { s.checkSuccessFull(); });
}

TEST(InertialChecks, ShortCheckLooksAtElements) {
    const auto shortCheck = [](InertialSensor& s) { s.checkSuccess(Matrix(s.segmentValues)); };
    const Matrix unevenScale(3, 3, {0.4, 0.0, 0.0, 0.0, 1.6, 0.0, 0.0, 0.0, 1.0});
    const Matrix turnedScale(3, 3, {1.0, 0.0, 0.31, 0.0, 1.0, 0.0, 0.0, -0.5, 1.0});
    const auto looselySingular = [](InertialSensor& s) {
        s.axisMapping = singularMapping;
        s.expectedErrorLimit = s.normDeviationLimit = 9.0;
    };
    for (const CheckRow& row : {
             CheckRow{noise(-1.0, 0.06, 0.0), L"", ""},
             CheckRow{noise(0.0, 0.0, 0.061), L"Noise", noiseReason},
             CheckRow{scaledBy(unevenScale), L"Scale", scaleReason},
             CheckRow{scaledBy(turnedScale), L"Rotation", rotationReason},
             CheckRow{[](InertialSensor& s) { s.offset[0] = nan; }, L"Offset2", offsetReason},
             CheckRow{scaleElement(1, 1, nan), L"Scale", scaleReason + rotationReason},
             CheckRow{measuredTimes(1.3), L"expected error", "Expected error vs calibrated is too high.\n"},
             CheckRow{[](InertialSensor& s) { s.segmentValues(0, 2) = -1.5; }, L"Norm variance",
                      "Calculated norm variance is too high.\n"},
             CheckRow{looselySingular, L"Axis Mapping", "Irreversible matrix created"},
         })
        judge(row, SequenceKind::fourSteps, shortCheck);
}

std::string shownBy(const std::function<void()>& action) {
    testing::internal::CaptureStdout();
    action();
    return testing::internal::GetCapturedStdout();
}

TEST(Asserts, SayWhatIsOffInTheirOwnForms) {
    const Vector value{1.0, -0.25, 0.0};
    const Vector expected{1.0, 0.0, 0.0};
    bool passed = true;
    EXPECT_EQ(shownBy([&] { passed = InertialSensor::vectorAssert(value, expected, 0.04, L"a test", L"!"); }),
              "Error in a test\n"
              "Error in vector assert. Vector:   1.000000  -0.250000   0.000000 \n"
              " Expected vector:   1.000000   0.000000   0.000000 \n"
              " distance is bigger than threshold of 0.04 !\n\n");
    EXPECT_FALSE(passed);
    EXPECT_TRUE(InertialSensor::vectorAssert(value, expected, 0.25, L"", L""));
    EXPECT_TRUE(InertialSensor::angleAssert({359.0}, {1.0}, 2.0, L"", L""));
    EXPECT_FALSE(InertialSensor::angleAssert({358.9}, {1.0}, 2.0, L"", L""));
    EXPECT_FALSE(InertialSensor::vectorAssert({0.0 / 0.0}, {0.0}, 9.0, L"", L""));
    EXPECT_FALSE(InertialSensor::vectorAssert({0.0}, {0.0}, 0.0 / 0.0, L"", L""));
    EXPECT_EQ(shownBy([&] { passed = InertialSensor::doubleAssert(100.0, 1234567.0, 0.5, L"b", L""); }),
              "Error in b\nError in double assert. Value: 100 Expected value: 1.23457e+06 distance "
              "is bigger than threshold of 0.5 \n");
    EXPECT_FALSE(passed);
    EXPECT_TRUE(InertialSensor::spikeAssert(3, L"", 3));
    EXPECT_EQ(shownBy([] { InertialSensor::spikeAssert(4, L"c", 3); }), "Error in c\nSpike detection error, spike count: 4\n");
}

TEST(RestTests, AJumpHidesTheNextOne) {
    using Row = std::pair<std::vector<double>, int>;
    for (const auto& [values, spikes] : {Row{{0, 2, 2, 2, 2, 2}, 1}, Row{{0, 2, 0, 0, 0, 0}, 1}, Row{{0, 2, 0, 2, 2, 2}, 2},
                                         Row{{0, 0, 0, 0, 0, 2}, 1}, Row{{0, 1, 2, 3, 4, 5}, 0}}) {
        FakeRun run(SequenceKind::fourSteps, RunMode::test);
        Accelerometer sensor(staticAccelerometer);
        sensor.setSensorManager(run);
        run.fillSegments(sensor, 6, [&row = values](int, int k) {
            return SampleValues{row.at(static_cast<std::size_t>(k)), 0, 0};
        });
        EXPECT_EQ(sensor.countSpikes(1, 1.0), spikes);
    }
}

/// A four-step test at rest: gravity as expected, but in one step multiplied.
TEST(RestTests, InnerStepsAreHeldInTheHand) {
    using Row = std::tuple<int, double, int>;  // step, factor, kind of the failure reported to the manager or -1
    for (const auto& [changedStep, factor, kind] : {Row{0, 1.0, -1}, Row{0, 1.15, 0}, Row{3, 1.15, 0}, Row{1, 1.15, -1},
                                                    Row{2, 1.29, -1}, Row{2, 1.31, 0}, Row{1, -1.0, 1}}) {
        FakeRun run(SequenceKind::fourSteps, RunMode::test);
        Accelerometer sensor(staticAccelerometer);
        sensor.setSensorManager(run);
        sensor.buildExpectedValues();
        const Matrix gravity = sensor.expectedValues;
        run.fillSegments(sensor, 8, [&, at = changedStep, change = factor](int segment, int k) {
            const int step = segment / 2;
            const double size = step == at ? change : 1.0;
            const double shake = k % 2 == 0 ? 0.01 : -0.01;
            return SampleValues{gravity(step, 0) * size + shake, gravity(step, 1) * size, gravity(step, 2) * size};
        });
        bool passed = false;
        shownBy([&] { passed = sensor.testCalibration(); });
        EXPECT_EQ(passed, kind < 0) << changedStep << factor;
        ASSERT_EQ(run.failures.count("Accelerometer"), kind < 0 ? 0U : 1U);
        EXPECT_TRUE(passed || static_cast<int>(run.failures["Accelerometer"]) == kind);
    }
}

TEST(RestTests, OnePositionTellsNoiseSpikesAndMean) {
    using Row = std::tuple<double, double, int, std::string>;
    for (const auto& [z, shake, spikes, text] : {
             Row{1.0, 0.001, 0, ""},
             Row{1.0, 0.0, 3, ""},
             Row{1.0, 0.0, 4, "[Failure] Spikes number detected on Accelerometer is above allowed threshold of 3\n"},
             Row{1.0, 0.05, 0,
                 "[Failure] Noise on Accelerometer sensor exceeded the threshold on axis:Y\n"
                 "Noise: 0.050000 , maximum allowed is 0.040000\n"},
             Row{0.5, 0.0, 0,
                 "[Failure] Average value error in Accelerometer above allowed threshold 0.100000\n"
                 "Expected:   0.000000   0.000000   1.000000 \nResults:    0.000000   0.000000   0.500000 \n\n"},
         }) {
        FakeRun run(SequenceKind::minimal, RunMode::test);
        Accelerometer sensor(staticAccelerometer);
        sensor.setSensorManager(run);
        for (int k = 0; k < 4000; ++k) {
            const double spike = k < spikes - 1 ? 0.6 : k == 3000 && spikes > 0 ? -0.6 : 0.0;
            sensor.dataRecieved({10.0 * k, {0.0, k % 2 == 0 ? shake : -shake, z + spike}});
        }
        bool passed = false;
        EXPECT_EQ(shownBy([&] { passed = sensor.testCalibration(); }), text);
        EXPECT_EQ(passed, text.empty());
        EXPECT_EQ(run.failures.empty(), text.empty());
    }
}

}  // namespace
}  // namespace tavoren
