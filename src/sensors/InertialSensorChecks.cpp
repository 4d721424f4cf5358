#include <algorithm>
#include <cmath>
#include <numeric>

#include "common/CalibrationException.h"
#include "common/Text.h"
#include "common/Utf8.h"
#include "files/xml/XmlElement.h"
#include "frame/Logger.h"
#include "numerics/Rotation.h"
#include "numerics/SingularValues.h"
#include "sensors/InertialSensor.h"

namespace tavoren {

namespace {

constexpr const char* function = "InertialSensor::checkSuccess";
constexpr double degreesPerHalfTurn = 180.0;
constexpr double pi = 3.141592653589793;
constexpr double smallestDeterminant = 0.1;

bool isFinite(const Matrix& matrix) {
    for (int i = 0; i < matrix.rows(); ++i)
        for (const double element : matrix.rowSpan(i))
            if (!std::isfinite(element))
                return false;
    return true;
}

bool isIrreversible(const Matrix& matrix) {
    return std::abs(determinant3(matrix)) < smallestDeterminant;
}

double rotationDegrees(const SingularValues& decomposed) {
    const Matrix rotation = decomposed.left * transpose(decomposed.right);
    return norm(rotationVectorFromMatrix(rotation)) * degreesPerHalfTurn / pi;
}

}  // namespace

bool InertialSensor::isFinite(const Vector& vector) {
    return std::all_of(vector.begin(), vector.end(), [](double x) { return std::isfinite(x); });
}

void InertialSensor::fail(bool condition, std::wstring_view parameter, std::string_view reason) {
    if (!condition)
        return;
    if (!failed)
        setLogAttribute(L"FailureParameter", parameter);
    failed = true;
    failureReasons += reason;
}

void InertialSensor::beginCheck(const Matrix& measured) {
    Logger::write(LogLevel::insane, function, __LINE__, "Started InertialSensor::checkSuccess");
    logMatrix(measured, L"Averages", L"The measured averages of the calibration process");
    logMatrix(expectedValues, L"ExpectedAverages",
              L"The averages that are expected at a perfectly calibrated system");
    logVector(offset, L"Offset", L"The calculated offset of the sensor");
    logMatrix(scaleMatrix, L"Scale", L"The calculated scale matrix of the sensor");
    logMatrix(axisMapping, L"AxisMapping", L"The calculated axis mapping of the sensor");
}

void InertialSensor::finishCheck() {
    if (failed)
        throw CalibrationException("Calibration failed for sensor " + displayName() +
                                   ". Reason: " + failureReasons);
    setLogAttribute(L"Success", L"true");
    Logger::write(LogLevel::insane, function, __LINE__, "Finished InertialSensor::checkSuccess");
}

void InertialSensor::logCalibratedPositions(const std::vector<Vector>& positions) {
    auto element = std::make_shared<XmlElement>(L"CalibratedAverages");
    element->setAttribute(L"Rows", std::to_wstring(positions.size()));
    element->setAttribute(L"Cols", L"3");
    std::wstring values;
    for (const Vector& position : positions)
        values += wideListText(position);
    logElement(element, values, L"Measured averages after applying the calculated calibration");
}

double InertialSensor::expectedError(const std::vector<Vector>& positions) const {
    double errorSum = 0.0;
    for (std::size_t i = 0; i < positions.size(); ++i)
        errorSum += norm(positions[i] - row(expectedValues, static_cast<int>(i)));
    return errorSum / static_cast<double>(positions.size());
}

void InertialSensor::checkScaleAndRotation() {
    if (!tavoren::isFinite(scaleMatrix)) {
        fail(true, L"Scale", "Calculated scale is too high.\n");
        fail(true, L"Rotation", "Calculated rotation is too high.\n");
        return;
    }
    const SingularValues decomposed(scaleMatrix);
    bool tooHigh = false;
    for (int k = 0; k < 3; ++k)
        tooHigh = tooHigh || std::abs(decomposed.singular(k, k) - 1.0) > scaleLimit;
    fail(tooHigh, L"Scale", "Calculated scale is too high.\n");
    fail(rotationDegrees(decomposed) > rotationLimit, L"Rotation",
         "Calculated rotation is too high.\n");
}

void InertialSensor::checkSuccessFull() {
    beginCheck(segmentValues);
    fail(!isFinite(offset) || maxAbs(offset) > offsetLimit, L"Offset1",
         "Calculated offset is too high.\n");
    checkScaleAndRotation();

    std::vector<Vector> positions;
    std::vector<double> norms;
    for (int i = 0; i < positionCount; ++i) {
        positions.push_back(calibratedValue(i));
        norms.push_back(norm(positions.back()));
    }
    logCalibratedPositions(positions);
    const double deviation = standardDeviation(norms);
    logValue(deviation, L"NormSTD",
             L"The calculated norm standard deviation of the sensor during the calibration");
    fail(deviation > normDeviationLimit, L"norm standard deviation",
         "Calculated norm standard deviation is too high.\n");
    fail(expectedError(positions) > expectedErrorLimit, L"expected error vs calibrated",
         "Expected error vs calibrated is too high.\n");
    logVector(whiteNoise, L"WhiteNoise",
              L"The calculated white noise of the sensor during the calibration");
    fail(maxAbs(whiteNoise) > whiteNoiseLimit, L"White Noise",
         "Calculated white noise is too high.\n");
    fail(isIrreversible(axisMapping), L"AxisMapping",
         "Irreversible axis mapping matrix created.\n");
    fail(isIrreversible(scaleMatrix), L"scale", "Irreversible scale matrix created.\n");
    const double mean = norms.empty() ? 0.0
                                      : std::accumulate(norms.begin(), norms.end(), 0.0) /
                                            static_cast<double>(norms.size());
    fail(mean < expectedNorm - normTolerance, L"norm variance",
         "Calculated norm value is too low.\n");
    fail(mean > expectedNorm + normTolerance, L"norm variance",
         "Calculated norm value is too high.\n");
    finishCheck();
}

void InertialSensor::checkScaleElements() {
    const bool finite = tavoren::isFinite(scaleMatrix);
    bool scaleFailed = false;
    bool rotationFailed = false;
    for (int k = 0; k < 9; ++k) {
        const double element = scaleMatrix(k / 3, k % 3);
        if (k / 3 == k % 3 && !scaleFailed) {
            scaleFailed = !finite || std::abs(element - 1.0) > scaleLimit;
            fail(scaleFailed, L"Scale", "Calculated scale is too high.\n");
        } else if (k / 3 != k % 3 && !rotationFailed) {
            rotationFailed = !finite || std::abs(element) > rotationLimit;
            fail(rotationFailed, L"Rotation", "Calculated rotation is too high.\n");
        }
    }
}

void InertialSensor::checkSuccess(const Matrix& measured) {
    beginCheck(measured);
    const bool offsetTooHigh = std::any_of(offset.begin(), offset.end(), [this](double x) {
        return !std::isfinite(x) || std::abs(x) > offsetLimit;
    });
    fail(offsetTooHigh, L"Offset2", "Calculated offset is too high.\n");
    checkScaleElements();

    const int count = measured.rows();
    const Matrix model = scaleMatrix * axisMapping;
    std::vector<Vector> positions;
    double sum = 0.0;
    double sumSquares = 0.0;
    for (int i = 0; i < count; ++i) {
        const Vector value = row(measured, i);
        // The rows of a gyroscope are angles: its offset has no part in them.
        positions.push_back(name == "Gyroscope" ? model * value : model * (value - offset));
        const double n = norm(positions.back());
        sum += n;
        sumSquares += n * n;
    }
    logCalibratedPositions(positions);
    const double deviation = std::sqrt((sumSquares - sum * sum / count) / count);
    logTest(L"NormVariance", widen(formatNumber(deviation)),
            L"The calculated norm variance of the sensor during the calibration");
    fail(deviation > normDeviationLimit, L"Norm variance",
         "Calculated norm variance is too high.\n");
    fail(count == expectedValues.rows() && expectedError(positions) > expectedErrorLimit,
         L"expected error", "Expected error vs calibrated is too high.\n");
    logVector(whiteNoise, L"WhiteNoise",
              L"The calculated white noise of the sensor during the calibration");
    fail(std::any_of(whiteNoise.begin(), whiteNoise.end(),
                     [this](double x) { return x > whiteNoiseLimit; }),
         L"Noise", "Calculated white noise is too high.\n");
    fail(isIrreversible(scaleMatrix) || isIrreversible(axisMapping), L"Axis Mapping",
         "Irreversible matrix created");
    finishCheck();
}

}  // namespace tavoren
