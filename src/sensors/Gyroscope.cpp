#include "sensors/Gyroscope.h"

#include <algorithm>

#include "common/CalibrationException.h"
#include "common/MathException.h"
#include "control/Process.h"
#include "frame/LogScope.h"
#include "sensors/SecondSensorLayout.h"
#include "sensors/SignedAxes.h"

namespace tavoren {

namespace {

using Turns = std::array<SignedAxis, 3>;

constexpr Turns primaryFull{{{0, 0, 1}, {0, 1, 0}, {1, 0, 0}}};
constexpr Turns primaryFourSteps{{{0, 1, 0}, {0, 0, 1}, {-1, 0, 0}}};
constexpr Turns flat{{{0, 0, 1}, {0, 0, 1}, {0, 0, 1}}};

// By `SecondSensorLayout`.
constexpr std::array<Turns, 4> secondFull{{
    {{{0, 0, -1}, {0, -1, 0}, {1, 0, 0}}},
    {{{0, 0, -1}, {0, 1, 0}, {-1, 0, 0}}},
    {{{0, 0, -1}, {-1, 0, 0}, {0, -1, 0}}},
    {{{0, 0, -1}, {1, 0, 0}, {0, 1, 0}}},
}};
constexpr std::array<Turns, 4> secondFourSteps{{
    {{{0, -1, 0}, {0, 0, -1}, {-1, 0, 0}}},
    {{{0, 1, 0}, {0, 0, -1}, {1, 0, 0}}},
    {{{-1, 0, 0}, {0, 0, -1}, {0, 1, 0}}},
    {{{1, 0, 0}, {0, 0, -1}, {0, -1, 0}}},
}};

constexpr double secondsPerMs = 0.001;

}  // namespace

Gyroscope::Gyroscope(const Luid& id) : InertialSensor(id) {
    name = "Gyroscope";
    calibratable = true;
    dataUnit = Unit::degPerSec;
    firmwareUnit = Unit::degSec5;
    rawDivisor = 100000;
    positionCount = 3;
    stableFloor = 0.1;
    stableDeviationLimit = 5.0;
    stableRangeLimit = 15.0;
    if (luid.hasDynamicData()) {
        formatId = 2;
        minDataSize = maxDataSize = 71;
    }
}

bool Gyroscope::dataRecieved(const SensorSample& sample) {
    return bufferSample(sample);
}

Luid Gyroscope::getLuid() const {
    Luid raw = luid;
    raw.SensorTypeId = 0x0241;
    raw.Flags = 0;
    return raw;
}

void Gyroscope::getCalibrationData() {
    getCalibrationDataAndPlatform();
}

void Gyroscope::captureRestRate() {
    restRate = recentMedian();
}

bool Gyroscope::isRotationDone(double) {
    const auto newest = static_cast<std::int64_t>(bufferedData.size()) - 1;
    if (restRate.empty() || newest < 1)
        return false;
    const Vector rate = sampleVector(newest) - restRate;
    const double seconds = (sampleTime(newest) - sampleTime(newest - 1)) * secondsPerMs;
    referenceValue += rate * seconds;
    if (norm(referenceValue) < rotationDoneAngle)
        return false;
    referenceValue = Vector(3);
    return true;
}

Vector Gyroscope::calibratedValue(int index) const {
    return scaleMatrix * axisMapping * row(segmentValues, index);
}

void Gyroscope::setDefaultLimits() {
    const bool full = isSequence(SequenceKind::full);
    offsetLimit = full ? 30.0 : 50.0;
    expectedErrorLimit = full ? 10.0 : 40.0;
    scaleLimit = full ? 0.3 : 0.5;
    rotationLimit = full ? 5.0 : 0.3;
    normDeviationLimit = 100.0;
    whiteNoiseLimit = 15.0;
    maxOffset = 50.0;
    restDeviationLimit = 5.0;
    defaultNoise = 0.1;
    normTolerance = 20.0;
    convertLimits(Unit::degPerSec);
}

void Gyroscope::buildExpectedValues() {
    const auto layout = [this] {
        return static_cast<std::size_t>(secondSensorLayout(formFactor, hinge));
    };
    switch (process().sequence) {
        case SequenceKind::full:
            expectedValues = matrixOf(isPrimary() ? primaryFull : secondFull[layout()], fullTurn);
            rotationDegrees = fullTurn;
            break;
        case SequenceKind::fourSteps:
            expectedValues =
                matrixOf(isPrimary() ? primaryFourSteps : secondFourSteps[layout()], quarterTurn);
            rotationDegrees = quarterTurn;
            noGyroRotation = true;
            break;
        case SequenceKind::magAccuracy:
            expectedValues = matrixOf(flat, quarterTurn);
            rotationDegrees = quarterTurn;
            break;
        case SequenceKind::minimal:
        case SequenceKind::accelerometerOnly:
            break;
    }
    expectedNorm = rotationDegrees;
}

void Gyroscope::calibrate() {
    setDefaultLimits();
    resetRows();
    buildExpectedValues();
    if (isSequence(SequenceKind::minimal)) {
        calibrateOnePosition();
        return;
    }
    if (!isSequence(SequenceKind::full) && !isSequence(SequenceKind::fourSteps))
        return;
    computePositions();
    calcScale(rotationDegrees);
    splitScaleAndMapping(noGyroRotation);
    checkSuccessFull();
    convertToFWForamt();
}

void Gyroscope::computePositions() {
    const LogScope scope("Gyroscope::computePositions", __LINE__);
    const std::vector<double>& times = process().segmentTimes;
    const std::size_t stride = process().segmentStride();
    const std::vector<std::int64_t> index = findIndex();
    std::vector<std::array<std::int64_t, 2>> rest;
    int turn = 0;
    for (std::size_t i = 0; i + 1 < index.size(); ++i) {
        if (i % 2 == 0)
            rest.push_back({index[i], index[i + 1] - 1});
        else if ((i - 1) % stride == 0)
            integrateTurn(turn++, index[i], index[i + 1]);
    }
    offset = medianAndDeviation(rest);
    for (int r = 0; r < positionCount; ++r) {
        const std::size_t k = 1 + static_cast<std::size_t>(r) * stride;
        const double duration = times.at(k + 1) - times.at(k);
        segmentValues.setRow(r, row(segmentValues, r) - offset * duration * secondsPerMs);
    }
}

void Gyroscope::integrateTurn(int turn, std::int64_t first, std::int64_t last) {
    Vector angle(3);
    for (std::int64_t j = std::max<std::int64_t>(first, 1); j < last; ++j)
        angle += sampleVector(j) * (sampleTime(j) - sampleTime(j - 1)) * secondsPerMs;
    segmentValues.setRow(turn, angle);
}

void Gyroscope::calcScale(double degrees) {
    const LogScope scope("Gyroscope::calcScale", __LINE__);
    try {
        for (int r = 0; r < 3; ++r) {
            const Vector expected = row(expectedValues, r);
            const int axis = indexOfMaxMagnitude(expected);
            const Vector column = row(segmentValues, r) * signOf(expected[axis]) / degrees;
            for (int k = 0; k < 3; ++k)
                scaleMatrix(k, axis) = column[k];
        }
        scaleMatrix = inverse3(scaleMatrix);
    } catch (const MathException&) {
        throw CalibrationException("Failed to calculate scale matrix");
    }
}

}  // namespace tavoren
