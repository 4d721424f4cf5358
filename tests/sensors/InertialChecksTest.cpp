#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "common/CalibrationException.h"
#include "files/xml/XmlAttribute.h"
#include "files/xml/XmlElement.h"
#include "sensors/Accelerometer.h"
#include "sensors/ExpectThrow.h"
#include "sensors/FakeRun.h"
#include "sensors/Gyroscope.h"

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

// Of the layout of the second body the two sensors' tables must tell the same turn of axes.
TEST(ExpectedValues, TablesOfBothSensorsTellTheSameTurnOfAxes) {
    for (const std::uint8_t formFactor : {std::uint8_t{0}, std::uint8_t{5}}) {
        for (std::uint8_t hinge = 0; hinge < 4; ++hinge) {
            Matrix turn;
            for (const SequenceKind kind : {SequenceKind::full, SequenceKind::fourSteps}) {
                FakeRun run(kind);
                const auto expected = [&](auto sensor) {
                    sensor->setSensorManager(run);
                    sensor->formFactor = formFactor;
                    sensor->hinge = hinge;
                    sensor->buildExpectedValues();
                    return sensor->expectedValues;
                };
                const Matrix gravity = expected(std::make_shared<Accelerometer>(staticAccelerometer));
                const Matrix second = expected(std::make_shared<Accelerometer>(secondOf(staticAccelerometer)));
                if (turn.rows() == 0)
                    turn = inverse3(subMatrix(gravity, 0, 0, 3, 3)) * subMatrix(second, 0, 0, 3, 3);
                EXPECT_DOUBLE_EQ(determinant3(turn), 1.0);
                EXPECT_LT(std::abs(maxMagnitudeEntry(gravity * turn - second)), 1e-6);
                const Matrix turns = expected(std::make_shared<Gyroscope>(staticGyroscope));
                const Matrix secondTurns = expected(std::make_shared<Gyroscope>(secondOf(staticGyroscope)));
                EXPECT_EQ(maxMagnitudeEntry(turns * turn - secondTurns), 0.0) << int{formFactor} << int{hinge};
            }
        }
    }
}

}  // namespace
}  // namespace tavoren
