#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "common/CalibrationException.h"
#include "common/MathException.h"
#include "common/Text.h"
#include "frame/Logger.h"
#include "sensors/Magnetometer.h"

namespace tavoren {

namespace {

constexpr double degreesPerRadian = 57.29577951308232;

constexpr double ellipsoidErrorLimit = 0.05;  // of the radius
constexpr double dipDeviationLimit = 3.5;     // degrees
constexpr double dipRangeLimit = 17.0;        // degrees

// Of the movement checks, in milligauss.
constexpr double magMotionThres_rotation = 400.0;
constexpr double beginEndDifferenceThres_rotation = 100.0;
constexpr double magMovementThres_testPhase_min = 10.0;
constexpr double magMovementThres_testPhase_max = 40.0;
constexpr double beginEndDifferenceThres_testPhase = 100.0;

using Axes = std::array<double, 3>;

/// The lines that one movement check leaves in the log.
class CheckLog {
  public:
    CheckLog(const char* functionText, std::uint32_t sourceLine)
        : function(functionText), line(sourceLine) {}
    void write(const std::string& text) const {
        Logger::write(LogLevel::info, function, line, text);
    }
    void number(const std::string& label, double value) const {
        write(label + ": " + formatNumber(value));
    }
    void axes(const std::string& label, const Axes& values) const {
        write(label + ": " + formatNumber(values[0]) + ", " + formatNumber(values[1]) + ", " +
              formatNumber(values[2]));
    }
    void flag(const std::string& label, bool value) const {
        write(label + (value ? ": 1" : ": 0"));
    }

  private:
    const char* function;
    std::uint32_t line;
};

Axes differenceOf(const SensorSample& a, const SensorSample& b) {
    Axes difference{};
    for (std::size_t k = 0; k < difference.size(); ++k)
        difference[k] = std::abs(a.values[k] - b.values[k]);
    return difference;
}

bool allBelow(const Axes& values, double limit) {
    return std::all_of(values.begin(), values.end(), [limit](double x) { return x < limit; });
}

Axes rangesOf(std::span<const SensorSample> samples) {
    Axes range{};
    for (std::size_t k = 0; k < range.size(); ++k) {
        double low = samples.front().values[k];
        double high = low;
        for (const SensorSample& sample : samples) {
            low = std::min(low, sample.values[k]);
            high = std::max(high, sample.values[k]);
        }
        range[k] = high - low;
    }
    return range;
}

}  // namespace

void Magnetometer::findFit() {
    try {
        const double error = fitEnvironment();
        logValue(error, L"EllipsoidError", L"the error of the ellipsoid fit");
        if (!(error <= ellipsoidErrorLimit))  // not-a-number is no fit either
            throw CalibrationException(
                "The environment is not good for calibrating, ellipsoid error is too high");
    } catch (const CalibrationException&) {
        setLogAttribute(L"FailureParameter", L"EllipsoidError");
        throw;
    } catch (const MathException&) {
        {
            const LogSection section(*this, L"Magnetic_Environment_Test");
            setLogAttribute(L"FailureParameter", L"Ellipsoid");
        }
        Logger::write(LogLevel::error, "Magnetometer::findFit", __LINE__,
                      "Math exception was thrown when try to calc ellipsoid error");
        throw CalibrationException(
            "Failed to calculate ellipsoid fit because of large magnetic interface. Check your "
            "environment");
    } catch (const std::exception&) {
        const std::string text = "The environment is too noisy for calibrating";
        Logger::write(LogLevel::error, "Magnetometer::findFit", __LINE__, text);
        throw CalibrationException(text);
    }
}

double Magnetometer::fitEnvironment() {
    const std::lock_guard lock(bufferLock);
    const std::vector<SensorSample> thinned = decimateSamples(bufferedData, findFitDistance);
    fittedEllipsoid = Ellipsoid(thinned, 1.0);
    return fittedEllipsoid.meanRadialError(thinned, 1.0);
}

void Magnetometer::startMagPreTest() {
    findFit();
    testPhase = true;
}

double Magnetometer::dipAngleOf(const SensorSample& sample) const {
    const Vector values{sample.values[0], sample.values[1], sample.values[2]};
    return angleBetween(fittedEllipsoid.apply(values), {0.0, 0.0, 1.0}) * degreesPerRadian;
}

bool Magnetometer::checkMagPreTest_singleRotation(std::int32_t first, std::int32_t last,
                                                  std::int32_t& axis) {
    const std::lock_guard lock(bufferLock);
    if (first < 0 || last < first || static_cast<std::size_t>(last) >= bufferedData.size())
        throw CalibrationException("Index of bufferedData invalid.");
    return hasTurned(first, last, axis);
}

bool Magnetometer::hasTurned(std::int32_t first, std::int32_t last, std::int32_t& axis) const {
    const auto samples =
        std::span<const SensorSample>(bufferedData)
            .subspan(static_cast<std::size_t>(first), static_cast<std::size_t>(last - first) + 1);
    const Axes range = rangesOf(samples);
    const Axes difference = differenceOf(samples.front(), samples.back());
    axis = static_cast<std::int32_t>(std::min_element(range.begin(), range.end()) - range.begin());
    const double largest = *std::max_element(range.begin(), range.end());
    const CheckLog log("Magnetometer::checkMagPreTest_singleRotation", __LINE__);
    log.write("===== checkMagPreTest_singleRotation =====");
    log.number("range.Max()", largest);
    log.number("magMotionThres_rotation", magMotionThres_rotation);
    log.axes("difference", difference);
    log.number("beginEndDifferenceThres_rotation", beginEndDifferenceThres_rotation);
    return largest > magMotionThres_rotation &&
           allBelow(difference, beginEndDifferenceThres_rotation);
}

bool Magnetometer::checkMagPreTest_threeRotations(std::vector<std::int32_t> stageIndices) {
    constexpr std::size_t rotations = 3;
    if (stageIndices.size() < rotations)
        throw CalibrationException("Index of bufferedData invalid.");
    std::array<bool, rotations> followed{};
    std::array<bool, rotations> rotated{};
    std::int32_t first = 0;
    for (std::size_t i = 0; i < rotations; ++i) {
        std::int32_t axis = 0;
        followed[i] = checkMagPreTest_singleRotation(first, stageIndices[i] - 1, axis);
        rotated[static_cast<std::size_t>(axis)] = true;
        first = stageIndices[i];
    }
    const CheckLog log("Magnetometer::checkMagPreTest_threeRotations", __LINE__);
    for (std::size_t i = 0; i < rotations; ++i)
        log.flag("rotation" + std::to_string(i + 1) + "_followed", followed[i]);
    for (std::size_t i = 0; i < rotations; ++i)
        log.flag("axis" + std::to_string(i + 1) + "_rotated", rotated[i]);
    const auto isTrue = [](bool b) { return b; };
    return std::all_of(followed.begin(), followed.end(), isTrue) &&
           std::all_of(rotated.begin(), rotated.end(), isTrue);
}

bool Magnetometer::checkMagPreTest_translation() {
    const std::lock_guard lock(bufferLock);
    if (testPhaseData.empty())
        throw CalibrationException("length of bufferedData_testPhase invalid.");
    const Axes difference = differenceOf(testPhaseData.front(), testPhaseData.back());
    const double moved = norm(Vector(difference));
    const CheckLog log("Magnetometer::checkMagPreTest_translation", __LINE__);
    log.write("===== checkMagPreTest_translation =====");
    log.number("(currentPoint - LastData).norm()", moved);
    log.number("magMovementThres_testPhase_min", magMovementThres_testPhase_min);
    log.number("magMovementThres_testPhase_max", magMovementThres_testPhase_max);
    log.axes("difference", difference);
    log.number("beginEndDifferenceThres_testPhase", beginEndDifferenceThres_testPhase);
    return moved > magMovementThres_testPhase_min && moved < magMovementThres_testPhase_max &&
           allBelow(difference, beginEndDifferenceThres_testPhase);
}

void Magnetometer::testEnvironment() {
    const std::lock_guard lock(bufferLock);
    if (dipAngles.empty())
        throw CalibrationException("length of bufferedData_testPhase invalid.");
    const double deviation = standardDeviation(dipAngles);
    logValue(deviation, L"Dip Angle STD", L"the standard deviation of the dip angles");
    if (deviation > dipDeviationLimit) {
        setLogAttribute(L"FailureParameter", L"Dip Angle STD");
        throw CalibrationException(
            "The environment is not good for calibrating, dip angle standard deviation is too "
            "high");
    }
    const auto [low, high] = std::minmax_element(dipAngles.begin(), dipAngles.end());
    const double range = *high - *low;
    logValue(range, L"Dip Angle Range", L"the range of the dip angles");
    if (range > dipRangeLimit) {
        setLogAttribute(L"FailureParameter", L"Dip Angle Range");
        throw CalibrationException(
            "The environment is not good for calibrating, dip angle range is too high");
    }
    setLogAttribute(L"Success", L"true");
}

}  // namespace tavoren
