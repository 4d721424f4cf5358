#include "sensors/Accelerometer.h"

#include <cmath>

#include "common/CalibrationException.h"
#include "control/Process.h"
#include "files/TestingConfig.h"
#include "frame/Logger.h"
#include "sensors/SecondSensorLayout.h"
#include "sensors/SignedAxes.h"
#include "sensors/StaticRecord.h"

namespace tavoren {

namespace {

using Positions = std::array<SignedAxis, 4>;

constexpr Positions primaryFull{{{0, 0, 1}, {0, 1, 0}, {1, 0, 0}, {0, -1, 0}}};
constexpr Positions primaryFourSteps{{{0, 0, 1}, {-1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
constexpr Positions primaryFlat{{{0, 0, 1}, {0, 0, 1}, {0, 0, 1}, {0, 0, 1}}};
constexpr Positions secondFlat{{{0, 0, -1}, {0, 0, -1}, {0, 0, -1}, {0, 0, -1}}};

// By `SecondSensorLayout`.
constexpr std::array<Positions, 4> secondFull{{
    {{{0, 0, -1}, {0, -1, 0}, {1, 0, 0}, {0, 1, 0}}},
    {{{0, 0, -1}, {0, 1, 0}, {-1, 0, 0}, {0, -1, 0}}},
    {{{0, 0, -1}, {-1, 0, 0}, {0, -1, 0}, {1, 0, 0}}},
    {{{0, 0, -1}, {1, 0, 0}, {0, 1, 0}, {-1, 0, 0}}},
}};
constexpr std::array<Positions, 4> secondFourSteps{{
    {{{0, 0, -1}, {-1, 0, 0}, {0, -1, 0}, {0, 0, -1}}},
    {{{0, 0, -1}, {1, 0, 0}, {0, 1, 0}, {0, 0, -1}}},
    {{{0, 0, -1}, {0, 1, 0}, {-1, 0, 0}, {0, 0, -1}}},
    {{{0, 0, -1}, {0, -1, 0}, {1, 0, 0}, {0, 0, -1}}},
}};

constexpr double shiftColumn = 0.001;

}  // namespace

Accelerometer::Accelerometer(const Luid& id) : InertialSensor(id) {
    name = "Accelerometer";
    calibratable = true;
    dataUnit = Unit::g0;
    firmwareUnit = Unit::microg0;
    rawDivisor = 1000000;
    positionCount = 4;
    stableFloor = 0.0005;
    stableDeviationLimit = 0.015;
    stableRangeLimit = 0.08;
}

bool Accelerometer::dataRecieved(const SensorSample& sample) {
    return bufferSample(sample);
}

void Accelerometer::getCalibrationData() {
    getCalibrationDataAndPlatform();
}

void Accelerometer::setCheckVsOriginalAxis(bool check) {
    checkVsOriginalAxis = check;
}

bool Accelerometer::hasMovedFromReference() const {
    if (bufferedData.empty())
        return false;
    const auto newest = static_cast<std::int64_t>(bufferedData.size()) - 1;
    return norm(sampleVector(newest) - referenceValue) > moveThreshold;
}

void Accelerometer::setDefaultLimits() {
    const bool full = isSequence(SequenceKind::full) || isSequence(SequenceKind::accelerometerOnly);
    offsetLimit = 0.3;
    normDeviationLimit = full ? 0.001 : 0.04;
    expectedErrorLimit = full ? 0.001 : 0.2;
    whiteNoiseLimit = full ? 0.015 : 0.06;
    scaleLimit = full ? 0.3 : 0.5;
    rotationLimit = full ? 5.0 : 0.3;
    defaultNoise = full ? 0.001 : 0.0;
    maxOffset = 0.3;
    restDeviationLimit = 0.05;
    referenceMagnitude = 1.0;
    expectedNorm = 1.0;
    normTolerance = 0.02;
    convertLimits(Unit::g0);
}

void Accelerometer::buildExpectedValues() {
    const auto layout = [this] {
        return static_cast<std::size_t>(secondSensorLayout(formFactor, hinge));
    };
    switch (process().sequence) {
        case SequenceKind::full:
        case SequenceKind::accelerometerOnly:
            expectedValues = matrixOf(isPrimary() ? primaryFull : secondFull[layout()], gravity);
            break;
        case SequenceKind::fourSteps:
            expectedValues =
                matrixOf(isPrimary() ? primaryFourSteps : secondFourSteps[layout()], gravity);
            break;
        case SequenceKind::magAccuracy:
            expectedValues = matrixOf(isPrimary() ? primaryFlat : secondFlat, gravity);
            break;
        case SequenceKind::minimal:
            expectedAverage = {0.0, 0.0, isPrimary() ? gravity : -gravity};
            break;
    }
}

void Accelerometer::calibrate() {
    setDefaultLimits();
    resetRows();
    buildExpectedValues();
    switch (process().sequence) {
        case SequenceKind::minimal:
            calibrateOnePosition();
            break;
        case SequenceKind::full:
        case SequenceKind::accelerometerOnly:
            calibrateFull();
            break;
        case SequenceKind::fourSteps:
            calibrateFourSteps();
            break;
        case SequenceKind::magAccuracy:
            break;
    }
}

void Accelerometer::calibrateFull() {
    computePositions();
    whiteNoise = calcWhiteNoise();
    unpackFullSolution(inverse(buildFullSystem()) * buildFullTargets());
    splitScaleAndMapping(false);
    checkSuccessFull();
    convertToFWForamt();
}

Matrix Accelerometer::buildFullSystem() const {
    Matrix system(12, 12);
    for (int axis = 0; axis < 3; ++axis) {
        for (int position = 0; position < 4; ++position) {
            const int line = 4 * axis + position;
            for (int k = 0; k < 3; ++k)
                system(line, 4 * axis + k) = segmentValues(position, k);
            system(line, 4 * axis + 3) = shiftColumn;
        }
    }
    return system;
}

Vector Accelerometer::buildFullTargets() const {
    Vector targets(12);
    for (int axis = 0; axis < 3; ++axis)
        for (int position = 0; position < 4; ++position)
            targets[4 * axis + position] = expectedValues(position, axis);
    return targets;
}

void Accelerometer::unpackFullSolution(const Vector& solution) {
    if (solution.size() != 12)
        return;
    for (int axis = 0; axis < 3; ++axis)
        for (int k = 0; k < 3; ++k)
            scaleMatrix(axis, k) = solution[4 * axis + k];
    const Vector shift{solution[3], solution[7], solution[11]};
    offset = inverse3(scaleMatrix) * -shiftColumn * shift;
}

void Accelerometer::calibrateFourSteps() {
    computePositions();
    whiteNoise = calcWhiteNoise();
    calcAxisMappingFromPositions();
    calcOffsetFromPositions();
    calcScaleFromPositions();
    if (checkVsOriginalAxis)
        CheckAxisMappingVsOrig();
    checkSuccess(segmentValues);
    convertToFWForamt();
}

void Accelerometer::calcAxisMappingFromPositions() {
    Matrix measuredAxes(3, 3);
    Matrix expectedAxes(3, 3);
    for (int i = 0; i < 3; ++i) {
        const Vector measured = row(segmentValues, i);
        const int axis = indexOfMaxMagnitude(measured);
        measuredAxes(axis, i) = signOf(measured[axis]);
        const Vector expected = normalized(row(expectedValues, i));
        for (int k = 0; k < 3; ++k)
            expectedAxes(k, i) = expected[k];
    }
    axisMapping = expectedAxes * inverse3(measuredAxes);
}

void Accelerometer::calcOffsetFromPositions() {
    // Each axis sums its readings in the positions where gravity does not lie along it.
    offset = Vector(3);
    Vector counts(3);
    for (int step = 0; step < process().stepCount; ++step) {
        const Vector value = axisMapping * row(segmentValues, step);
        const int along = indexOfMaxMagnitude(value);
        offset += value;
        offset[along] -= value[along];
        counts += ones3();
        counts[along] -= 1.0;
    }
    for (int axis = 0; axis < 3; ++axis)
        offset[axis] = offset[axis] / counts[axis];
    offset = transpose(axisMapping) * offset;
}

void Accelerometer::calcScaleFromPositions() {
    for (int i = 0; i < 3; ++i) {
        const Vector value = axisMapping * (row(segmentValues, i) - offset);
        const int along = indexOfMaxMagnitude(value);
        scaleMatrix(along, along) = referenceMagnitude / std::abs(value[along]);
    }
}

void Accelerometer::CheckAxisMappingVsOrig() {
    if (!isPrimary())
        return;
    if (firmwareData.size() < StaticRecord::sizeUpToMapping || isCustomFormat(firmwareData.front()))
        throw CalibrationException("Error. No original axis mapping for sensor " + name);
    const std::uint32_t found = compressAxisMapping(axisMapping);
    const std::uint32_t original =
        compressAxisMapping(expandAxisMapping(StaticRecord::mapping(firmwareData)));
    if (found == original)
        return;
    Logger::write(LogLevel::error, "Accelerometer::CheckAxisMappingVsOrig", __LINE__,
                  "the original axis mapping was " + std::to_string(original) + " new one is " +
                      std::to_string(found));
    setLogAttribute(L"FailureParameter", L"AxisMapping");
    throw CalibrationException(
        "Calibration failed for all sensors. "
        "Reason: wrong movement detected");
}

bool Accelerometer::testCalibration() {
    resetRows();
    buildExpectedValues();
    averageLimit = testingConfig().acc_Threshold_G0;
    noiseLimit = testingConfig().acc_MaxNoise_G0;
    spikeLimit = testingConfig().acc_MaxSpike_G0;
    if (!isSequence(SequenceKind::minimal)) {
        ComputeStaticSegmentsMeans();
        ComputeStaticSegmentsStds();
    }
    resetRows();
    return testRest();
}

}  // namespace tavoren
