#include "common/CalibrationException.h"
#include "frame/LogScope.h"
#include "sensors/InertialSensor.h"
#include "sensors/StaticRecord.h"

namespace tavoren {

void InertialSensor::accumulateSample(const SensorSample& sample) {
    const LogScope scope("InertialSensor::accumulateSample", __LINE__);
    const Vector values{sample.values[0], sample.values[1], sample.values[2]};
    sampleSum += values;
    sampleSquareSum += elementProduct(values, values);
    ++sampleCount;
}

InertialSensor::RestStatistics InertialSensor::restStatistics() const {
    if (sampleCount == 0)
        throw CalibrationException(displayName() + " Calibration Error: No data was available");
    const Vector average = sampleSum / sampleCount;
    const Vector variance = sampleSquareSum / sampleCount - elementProduct(average, average);
    return {average, elementSqrt(elementAbs(variance))};
}

void InertialSensor::calibrateOnePosition() {
    const LogScope scope("InertialSensor::calibrateOnePosition", __LINE__);
    ByteString record = firmwareData.empty() ? prependFormat(getStaticDefault()) : firmwareData;
    failureReasons = "Calibration failed for sensor " + name + ". Reason: ";
    const auto [average, deviation] = restStatistics();
    logVector(average, L"Averages", L"The measured averages of the calibration process");
    logVector(expectedAverage, L"ExpectedAverages",
              L"The averages that are expected at a perfectly calibrated system");
    // Without a record in the firmware there is nothing to undo.
    const Vector expected =
        firmwareData.empty() ? expectedAverage : reverseMatrix * expectedAverage;
    const Vector found = average - expected;
    logVector(found, L"Offset", L"The calculated offset of the sensor");
    logVector(deviation, L"StandardDeviation",
              L"The standard deviation of the sampled sensor data");
    logVector(average - found, L"CalibratedAverages",
              L"Measured averages after applying the calculated calibration");
    checkOffset(found);
    fail(maxAbs(deviation) > restDeviationLimit, L"StandardDeviation",
         "Data standard deviation is too high. Device should be motionless.\n");
    offset = found;
    whiteNoise = deviation;
    if (failed)
        throw CalibrationException(failureReasons);
    const std::array<std::int32_t, 3> converted =
        convertOffset(columnMatrix(found), dataUnit, firmwareUnit);
    for (int axis = 0; axis < 3; ++axis)
        StaticRecord::setOffset(record, axis, converted[static_cast<std::size_t>(axis)]);
    setLogAttribute(L"Success", L"true");
    calibrationData = std::move(record);
}

void InertialSensor::checkOffset(const Vector& found) {
    const double expected = expectedAverage[2];
    Vector turnedOver = found;  // small when the device lay the other way up
    turnedOver[2] = -(expected + found[2]) - expected;
    fail(!isFinite(found) || maxAbs(found) > maxOffset, L"Offset",
         !(maxAbs(turnedOver) > maxOffset)
             ? "Calculated offset is too high. Check that axis mapping is correct. Note That "
               "per-model calibration is a prerequisite for running a Face Up calibration.\n"
             : "Calculated offset is too high.\n");
}

}  // namespace tavoren
