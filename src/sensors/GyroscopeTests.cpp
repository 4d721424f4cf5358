#include <algorithm>

#include "common/CalibrationException.h"
#include "common/Text.h"
#include "common/Utf8.h"
#include "control/Process.h"
#include "files/TestingConfig.h"
#include "frame/LogScope.h"
#include "numerics/Rotation.h"
#include "sensors/Gyroscope.h"
#include "sensors/SensorRun.h"

namespace tavoren {

namespace {

constexpr double msPerSecond = 1000.0;
constexpr double radiansPerDegree = 0.0174532925;

}  // namespace

bool Gyroscope::testCalibration() {
    resetRows();
    buildExpectedValues();
    averageLimit = testingConfig().gyr_threshold_motionless_DPS;
    noiseLimit = testingConfig().gyr_MaxNoise_DPS;
    spikeLimit = testingConfig().gyr_MaxSpike_DPS;
    const bool minimal = isSequence(SequenceKind::minimal);
    if (!minimal) {
        integrateRotations();
        ComputeStaticSegmentsStds();
    }
    if (isSequence(SequenceKind::magAccuracy))
        return true;
    resetRows();
    const bool rest = testRest();
    if (minimal)
        return rest;
    const bool turns = Performing_TestIntegration();
    return rest && turns;
}

void Gyroscope::integrateRotations() {
    const LogScope scope("Gyroscope::integrateRotations", __LINE__);
    if (process().segmentTimes.empty())
        throw CalibrationException(displayName() +
                                   " Calibration Error: Failed splitting data to segments");
    const int steps = process().stepCount;
    rotationAngles.setRows(steps - 1);
    ComputeStaticSegmentsMeans();
    Vector sum(3);
    for (int step = 0; step < steps; ++step)
        sum += row(segmentValues, step);
    offset = sum / steps;
    const std::vector<std::int64_t> index = findIndex();
    for (int turn = 0; turn < steps - 1; ++turn) {
        const auto k = 2 * static_cast<std::size_t>(turn) + 1;
        measureTurn(turn, index[k], index[k + 1]);
    }
    computeRestDeviation(index);
}

void Gyroscope::measureTurn(int turn, std::int64_t first, std::int64_t last) {
    const bool tracked = process().type == RunMode::test;
    const Vector restingRate = row(segmentValues, 0);
    Vector angle(3);
    Matrix rotation = identity(3);
    for (std::int64_t j = std::max<std::int64_t>(first, 1); j < last; ++j) {
        const Vector rate = sampleVector(j) - restingRate;
        const double seconds = (sampleTime(j) - sampleTime(j - 1)) / msPerSecond;
        angle += rate * seconds;
        if (tracked)
            rotation = updateRotationMatrix(rotation, rate * seconds * radiansPerDegree);
    }
    rotationAngles.setRow(turn, angle);
    if (tracked)
        rotationMatrices.push_back(rotation);
}

void Gyroscope::computeRestDeviation(const std::vector<std::int64_t>& index) {
    Vector sum(3);
    std::int64_t count = 0;
    for (std::size_t k = 0; k + 1 < index.size(); k += 2) {
        for (std::int64_t j = index[k]; j < index[k + 1]; ++j) {
            const Vector distance = offset - sampleVector(j);
            sum += elementProduct(distance, distance);
            ++count;
        }
    }
    if (count == 0)
        throw CalibrationException("Error. Divider is zero");
    whiteNoise = elementSqrt(sum / static_cast<double>(count));
}

bool Gyroscope::Performing_TestIntegration() {
    bool passed = true;
    bool wrongMovement = false;
    {
        const LogSection section(*this, L"Performing_TestIntegration");
        for (int turn = 0; turn < process().stepCount - 1; ++turn)
            passed = testTurn(turn, wrongMovement) && passed;
    }
    if (wrongMovement)
        sensorManager->addFailure(displayName(), FailureKind::axisMapping);
    else if (!passed)
        sensorManager->addFailure(displayName(), FailureKind::calibration);
    return passed;
}

bool Gyroscope::testTurn(int turn, bool& wrongMovement) {
    const std::wstring number = std::to_wstring(turn);
    const double threshold = testingConfig().gyr_threshold_motion_DPS;
    const Vector measured = row(rotationAngles, turn);
    const Vector expected = row(expectedValues, turn);
    logComment(L"dynamic step " + number);
    const bool passed = vectorAssert(
        measured, expected, threshold,
        L"motion " + widen(displayName()) + L" step " + number + L" gyro rotation test", L"");
    logVector(measured, L"Angles", L"measured rotation in degrees");
    logVector(expected, L"Expected", L"expected rotation at a perfectly calibrated system");
    logTest(L"threshold", widen(formatNumber(threshold)), L"");
    logVerdict(passed);
    if (!passed && isWrongMovement(expected, measured))
        wrongMovement = true;
    return passed;
}

}  // namespace tavoren
