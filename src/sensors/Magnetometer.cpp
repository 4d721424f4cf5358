#include "sensors/Magnetometer.h"

#include <cmath>

#include "common/CalibrationException.h"
#include "common/MathException.h"
#include "control/Process.h"
#include "frame/Logger.h"

namespace tavoren {

Magnetometer::Magnetometer(const Luid& id) : InertialSensor(id) {
    name = "Magnetometer";
    calibratable = true;
    dataUnit = Unit::milliGauss;
    firmwareUnit = Unit::microGauss;
    rawDivisor = 1000;
    expectedAverage = {0.0, 360.0, 270.0};
    positionCount = 4;
    stableFloor = 1.0;
    stableDeviationLimit = 30.0;
    stableRangeLimit = 100.0;
}

bool Magnetometer::dataRecieved(const SensorSample& sample) {
    if (process().type != RunMode::magneticTest)
        return bufferSample(sample);
    const std::lock_guard lock(bufferLock);
    if (testPhase) {
        dipAngles.push_back(dipAngleOf(sample));
        testPhaseData.push_back(sample);
    } else {
        bufferedData.append(sample);
    }
    return true;
}

std::string Magnetometer::resultText() const {
    return process().type == RunMode::magneticTest ? "Test passed. You are good to go!\n"
                                                   : InertialSensor::resultText();
}

Luid Magnetometer::getLuid() const {
    Luid raw = luid;
    raw.SensorTypeId = 0x0242;
    raw.Flags = 0;
    return raw;
}

bool Magnetometer::supportsRunMode(RunMode mode) const {
    return mode != RunMode::ambientLight;
}

void Magnetometer::getCalibrationData() {
    getCalibrationDataAndPlatform();
}

bool Magnetometer::isRotationDone(double since) {
    if (bufferedData.empty())
        return false;
    const IndexRange span = findBufferRange(since, bufferedData.back().time - since);
    return turned.over(bufferedData, span) > movementRangeLimit;
}

bool Magnetometer::hasMovedFromReference() const {
    if (bufferedData.empty())
        return false;
    const auto newest = static_cast<std::int64_t>(bufferedData.size()) - 1;
    return norm(sampleVector(newest) - referenceValue) > displacementLimit;
}

void Magnetometer::setDefaultLimits() {
    const bool full = isSequence(SequenceKind::full);
    findFitDistance = 10.0;
    defaultNoise = 1.0;
    maxOffset = 5000.0;
    offsetLimit = 10000.0;
    normDeviationLimit = 30.0;
    expectedErrorLimit = 150.0;
    whiteNoiseLimit = full ? 15.0 : 50.0;
    scaleLimit = 1.0;
    rotationLimit = full ? 20.0 : 1.0;
    restDeviationLimit = 40.0;
    normTolerance = 200.0;
    expectedNorm = 450.0;
    convertLimits(Unit::milliGauss);
}

void Magnetometer::calibrate() {
    try {
        setDefaultLimits();
        resetRows();
        if (isSequence(SequenceKind::minimal))
            calibrateOnePosition();
        else if (isSequence(SequenceKind::full))
            calibrateFull();
    } catch (const MathException& e) {
        Logger::write(LogLevel::error, "Magnetometer::calibrate", __LINE__,
                      std::string("Math exception was thrown when try to calc magnetometer "
                                  "values - ") +
                          e.what());
        throw CalibrationException(
            "Failed to calc magnetometer values, check your magnetic environment");
    }
}

void Magnetometer::calibrateFull() {
    computePositions();
    const double noise = 2.0 * norm(whiteNoise);
    Ellipsoid ellipsoid;
    ellipsoid.fit(
        decimateSamples(bufferedData, std::isnan(noise) ? defaultDecimationDistance : noise));
    calcFromEllipsoid(ellipsoid);
    splitScaleAndMapping(false);
    checkSuccessFull();
    convertToFWForamt();
}

void Magnetometer::checkSuccess(const Matrix& measured) {
    const double field = norm(row(expectedValues, 0));
    const auto refuse = [this](std::string_view reason) {
        failed = true;
        setLogAttribute(L"FailureParameter", L"MagneticField");
        failureReasons += reason;
    };
    if (field < minMagneticField)
        refuse("Calculated magnetic field is too low.\n ");
    if (field > maxMagneticField)
        refuse("Calculated magnetic field is too high.\n ");
    InertialSensor::checkSuccess(measured);
    Logger::write(LogLevel::insane, "Magnetometer::checkSuccess", __LINE__,
                  "Finished Magnetometer::checkSuccess");
}

}  // namespace tavoren
