#include <cmath>

#include "common/Text.h"
#include "common/Utf8.h"
#include "control/Process.h"
#include "files/TestingConfig.h"
#include "frame/Console.h"
#include "sensors/InertialSensor.h"
#include "sensors/SensorRun.h"

namespace tavoren {

namespace {

constexpr double wrongMovementAngle = 0.7853981633974483;  // 45 degrees

std::wstring number(double value) {
    return widen(formatNumber(value));
}

}  // namespace

bool InertialSensor::testCalibration() {
    resetRows();
    return testRest();
}

bool InertialSensor::testRest() {
    return isSequence(SequenceKind::minimal)
               ? testOnePosition()
               : Performing_TestAverage(averageLimit, noiseLimit, spikeLimit);
}

bool InertialSensor::isWrongMovement(const Vector& expected, const Vector& measured) {
    const double product = norm(expected) * norm(measured);
    return std::isfinite(product) && product != 0.0 &&
           angleBetween(expected, measured) >= wrongMovementAngle;
}

void InertialSensor::logVerdict(bool passedTest) {
    logComment(passedTest ? L": PASSED" : L" FAILED");
}

bool InertialSensor::Performing_TestAverage(double averageThreshold, double noiseThreshold,
                                            double spikeThreshold) {
    bool passed = true;
    bool wrongMovement = false;
    {
        const LogSection section(*this, L"Performing_TestAverage");
        const int steps = process().stepCount;
        for (int step = 0; step < steps; ++step) {
            logComment(L"step " + std::to_wstring(step));
            const bool outer = step == 0 || step == steps - 1;
            const double factor = outer ? 1.0 : testingConfig().hand_held_motionless_factor;
            const bool mean = testMean(step, averageThreshold * factor, wrongMovement);
            const bool noise = testNoise(step, noiseThreshold * factor);
            const bool spikes = testSpikes(step, spikeThreshold * factor);
            passed = passed && mean && noise && spikes;
        }
    }
    if (wrongMovement)
        sensorManager->addFailure(displayName(), FailureKind::axisMapping);
    else if (!passed)
        sensorManager->addFailure(displayName(), FailureKind::calibration);
    return passed;
}

std::wstring InertialSensor::stepTitle(int step) const {
    return L"motionless " + widen(displayName()) + L" step " + std::to_wstring(step);
}

bool InertialSensor::testMean(int step, double threshold, bool& wrongMovement) {
    const bool isGyroscope = name == "Gyroscope";
    const Vector measured = row(segmentValues, step);
    const Vector expected = isGyroscope ? Vector(3) : row(expectedValues, step);
    const bool passed =
        vectorAssert(measured, expected, threshold, stepTitle(step) + L" Mean value test", L"");
    logVector(measured, L"Average", L"The measured averages");
    logVector(expected, L"ExpectedAverage",
              L"The averages that are expected at a perfectly calibrated system");
    logTest(L"threshold", number(threshold), L"");
    logVerdict(passed);
    if (!passed && !isGyroscope && isWrongMovement(expected, measured))
        wrongMovement = true;
    return passed;
}

bool InertialSensor::testNoise(int step, double threshold) {
    const Vector measured = row(segmentDeviations, step);
    const Vector expected(3);
    const bool passed =
        vectorAssert(measured, expected, threshold, stepTitle(step) + L" Std value test", L"");
    logVector(measured, L"StandardDeviation", L"The measured noise");
    logVector(expected, L"ExpectedDeviation",
              L"noise that is expected at a perfectly calibrated system");
    logTest(L"threshold", number(threshold), L"");
    logVerdict(passed);
    return passed;
}

bool InertialSensor::testSpikes(int step, double threshold) {
    const std::int32_t allowed = testingConfig().max_spikes_allowed;
    const std::int32_t count = countSpikes(step, threshold);
    const bool passed = spikeAssert(count, stepTitle(step), allowed);
    logTest(L"spikes", std::to_wstring(count), L"The measured spikes number");
    logTest(L"threshold", number(threshold), L"");
    logTest(L"allowed:", std::to_wstring(allowed), L"");
    logVerdict(passed);
    return passed;
}

std::int32_t InertialSensor::countSpikes(int step, double threshold) const {
    const std::vector<std::int64_t> index = findIndex();
    const auto k = 2 * static_cast<std::size_t>(step);
    std::int32_t count = 0;
    for (std::int64_t j = index[k]; j < index[k + 1] - 1; ++j) {
        if (norm(sampleVector(j + 1) - sampleVector(j)) > threshold) {
            ++count;
            ++j;
        }
    }
    return count;
}

bool InertialSensor::testOnePosition() {
    const auto [average, deviation] = restStatistics();
    const bool noise = testRestNoise(deviation);
    const bool spikes = testRestSpikes(average);
    const bool mean = testRestAverage(average);
    const bool passed = noise && spikes && mean;
    if (!passed)
        sensorManager->addFailure(displayName(), FailureKind::calibration);
    return passed;
}

bool InertialSensor::testRestNoise(const Vector& deviation) {
    bool passed = true;
    for (int axis = 0; axis < 3 && passed; ++axis) {
        passed = deviation[axis] <= noiseLimit;  // a not-a-number is no small noise
        if (!passed) {
            Console::printLine("[Failure] Noise on " + name +
                               " sensor exceeded the threshold on axis:" + "XYZ"[axis]);
            Console::printLine("Noise: " + formatNumber(deviation[axis]) +
                               " , maximum allowed is " + formatNumber(noiseLimit));
        }
    }
    logVector(deviation, L"StandardDeviation", L"measured noise");
    logVector(Vector(3), L"Expected", L"noise expected at a perfectly calibrated system");
    logTest(L"threshold", number(noiseLimit), L"");
    logVerdict(passed);
    return passed;
}

bool InertialSensor::testRestSpikes(const Vector& average) {
    const std::int32_t allowed = testingConfig().max_spikes_allowed;
    std::int32_t count = 0;
    for (std::size_t j = 0; j < bufferedData.size(); ++j)
        if (maxAbs(average - sampleVector(static_cast<std::int64_t>(j))) > spikeLimit)
            ++count;
    const bool passed = count <= allowed;
    logComment(passed ? L"spikes test: PASSED" : L"spikes test: FAILED");
    if (!passed)
        Console::printLine("[Failure] Spikes number detected on " + name +
                           " is above allowed threshold of " + std::to_string(allowed));
    return passed;
}

bool InertialSensor::testRestAverage(const Vector& average) {
    const Vector distance = average - expectedAverage;
    bool passed = true;
    for (int axis = 0; axis < 3 && passed; ++axis) {
        passed = std::abs(distance[axis]) <= averageLimit;  // nor a small distance
        if (!passed) {
            Console::printLine("[Failure] Average value error in " + name +
                               " above allowed threshold " + formatNumber(averageLimit));
            Console::printLine("Expected: " + logText(expectedAverage) +
                               "Results:  " + logText(average));
        }
    }
    logVector(average, L"Average", L"The measured averages");
    logVector(expectedAverage, L"ExpectedAverage",
              L"The averages that are expected at a perfectly calibrated system");
    logTest(L"threshold", number(averageLimit), L"");
    logVerdict(passed);
    return passed;
}

}  // namespace tavoren
