#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "common/CalibrationException.h"
#include "common/Text.h"
#include "common/Utf8.h"
#include "control/Process.h"
#include "files/TestingConfig.h"
#include "frame/Logger.h"
#include "numerics/PlanarEllipseFit.h"
#include "sensors/Magnetometer.h"
#include "sensors/SecondSensorLayout.h"
#include "sensors/SensorRun.h"
#include "sensors/SignedAxes.h"

namespace tavoren {

namespace {

constexpr double degreesPerRadian = 57.29577951308232;
constexpr double fullTurn = 360.0;
constexpr int headings = 4;

/// A heading is the angle from `north` to `east`: directions in the plane of the first two axes.
struct Compass {
    std::array<int, 2> east;
    std::array<int, 2> north;
};

constexpr Compass primaryCompass{{1, 0}, {0, 1}};

// By `SecondSensorLayout`.
constexpr std::array<Compass, 4> secondCompass{{
    {{1, 0}, {0, -1}},
    {{-1, 0}, {0, 1}},
    {{0, -1}, {-1, 0}},
    {{0, 1}, {1, 0}},
}};

double along(const Vector& value, const std::array<int, 2>& direction) {
    return direction[0] != 0 ? direction[0] * value[0] : direction[1] * value[1];
}

/// Around the mean, so that equal values give 0.
double deviationOf(std::span<const SensorSample> samples, std::size_t axis) {
    const auto count = static_cast<double>(samples.size());
    double sum = 0.0;
    for (const SensorSample& sample : samples)
        sum += sample.values[axis];
    const double mean = sum / count;
    double squares = 0.0;
    for (const SensorSample& sample : samples)
        squares += (sample.values[axis] - mean) * (sample.values[axis] - mean);
    return std::sqrt(squares / count);
}

bool valuesAgree(const Vector& value, const Vector& expected, double threshold,
                 std::wstring_view testName, std::wstring_view comment) {
    return InertialSensor::doubleAssert(value[0], expected[0], threshold, testName, comment);
}

}  // namespace

/// A quantity that a test compares, as the console and the result log name it.
struct Magnetometer::Quantity {
    std::wstring_view title;
    std::wstring_view measured;
    std::wstring_view measuredComment;
    std::wstring_view expected;
    std::wstring_view expectedComment;
    /// The comparison: measured, expected, threshold, title, comment.
    bool (*agree)(const Vector&, const Vector&, double, std::wstring_view, std::wstring_view);
};

bool Magnetometer::testCalibration() {
    resetRows();
    if (isSequence(SequenceKind::minimal))
        return true;
    ComputeStaticSegmentsMeans();
    ComputeStaticSegmentsStds();
    PlanarEllipse ellipse;
    Vector centre(3);
    fitPlanarEllipse(bufferedData, ellipse, centre);
    Logger::write(LogLevel::debug, "Magnetometer::testCalibration", __LINE__,
                  "center is: " + listText(centre));
    const bool noise = TestMagSTD();
    const bool still = TestStaticValues();
    const bool turns = TestMagValues(centre);
    const bool direction = TestDirection(centre);
    const bool scale = TestMagScale(ellipse);
    return noise && still && turns && direction && scale;
}

bool Magnetometer::runTest(std::wstring_view section, const std::function<bool()>& test) {
    bool passed = false;
    {
        const LogSection open(*this, section);
        passed = test();
    }
    if (!passed)
        sensorManager->addFailure(displayName(), FailureKind::calibration);
    return passed;
}

bool Magnetometer::compare(const Quantity& quantity, const Vector& measured, const Vector& expected,
                           double threshold) {
    const bool passed = quantity.agree(measured, expected, threshold, quantity.title, L"");
    logVector(measured, quantity.measured, quantity.measuredComment);
    logVector(expected, quantity.expected, quantity.expectedComment);
    logTest(L"threshold", widen(formatNumber(threshold)), L"");
    logVerdict(passed);
    return passed;
}

bool Magnetometer::TestMagSTD() {
    return runTest(L"Performing_TestMagSTD", [this] {
        bool passed = true;
        for (int step = 0; step < process().stepCount; ++step) {
            const std::wstring number = std::to_wstring(step);
            logComment(L"step " + number);
            const std::wstring title =
                L"motionless " + widen(displayName()) + L" step " + number + L" Std value test";
            passed =
                compare({title, L"StandardDeviation", L"The measured noise", L"ExpectedDeviation",
                         L"noise that is expected at a perfectly calibrated system", vectorAssert},
                        row(segmentDeviations, step), Vector(3),
                        testingConfig().mag_Threshold_Noise) &&
                passed;
        }
        return passed;
    });
}

bool Magnetometer::TestStaticValues() {
    return runTest(L"Performing_TestStaticValues", [this] {
        const double stillest =
            std::min({deviationOf(bufferedData, 0), deviationOf(bufferedData, 1),
                      deviationOf(bufferedData, 2)});
        return compare(
            {L"Magnetometer static values test", L"StaticValue", L"The measured static value",
             L"ExpectedStaticValue",
             L"static value that is expected at a perfectly calibrated system", valuesAgree},
            {stillest}, {0.0}, testingConfig().mag_Static_Threshold);
    });
}

bool Magnetometer::TestMagValues(const Vector& centre) {
    return runTest(L"Performing_TestMagValues", [this, &centre] {
        const Vector h = headingAngles(centre);
        return compare(
            {L"Magnetometer values test", L"MagnetometerValues",
             L"The measured Magnetometer values", L"ExpectedValues",
             L"Mag values that is expected at a perfectly calibrated system", angleAssert},
            wrapDegrees(h - Vector{h[3], h[0], h[1], h[2]}), {90.0, 90.0, 90.0, 90.0},
            testingConfig().mag_Threshold_angles);
    });
}

bool Magnetometer::TestDirection(const Vector& centre) {
    return runTest(L"Performing_TestDirection", [this, &centre] {
        const Vector measured = headingAngles(centre);
        Logger::write(LogLevel::debug, "Magnetometer::TestDirection", __LINE__,
                      "mag direction is: " + listText(measured));
        return compare(
            {L"Compass direction test", L"CompassDirection", L"The measured compass direction",
             L"ExpectedCompassDirection",
             L"compass direction that is expected at a perfectly calibrated system", angleAssert},
            measured, {0.0, 90.0, 180.0, 270.0}, testingConfig().mag_Threshold_angles);
    });
}

bool Magnetometer::TestMagScale(const PlanarEllipse& ellipse) {
    return runTest(L"Performing_TestMagScale", [this, &ellipse] {
        return compare(
            {L"Magnet scale test", L"MagScale", L"The measured Mag scale", L"ExpectedMagScale",
             L"Mag scale that is expected at a perfectly calibrated system", valuesAgree},
            {ellipse.principalScales[1] / ellipse.principalScales[0]}, {1.0},
            testingConfig().mag_scale_Thershold);
    });
}

Vector Magnetometer::headingAngles(const Vector& centre) const {
    if (segmentValues.rows() < headings)
        throw CalibrationException("Internal error");
    const auto& [east, north] =
        isPrimary()
            ? primaryCompass
            : secondCompass[static_cast<std::size_t>(secondSensorLayout(formFactor, hinge))];
    Vector angles(headings);
    for (int i = 0; i < headings; ++i) {
        const Vector d = row(segmentValues, i) - centre;
        angles[i] = std::atan2(along(d, east), along(d, north));
    }
    return wrapDegrees(angles * degreesPerRadian);
}

Vector Magnetometer::wrapDegrees(Vector degrees) {
    for (double& x : degrees)
        x = x < 0.0 ? x + fullTurn : x > fullTurn ? x - fullTurn : x;
    return degrees;
}

}  // namespace tavoren
