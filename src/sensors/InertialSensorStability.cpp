#include <algorithm>
#include <cmath>
#include <limits>

#include "common/CalibrationException.h"
#include "frame/LogScope.h"
#include "sensors/InertialSensor.h"

namespace tavoren {

namespace {

// What the statistics refuse: an empty buffer has no newest second.
constexpr IndexRange invalidRange{-1, -1};

constexpr double extensionStep = 100.0;  // ms
constexpr double noiseMargin = 1.5;

// Samples. A hub reports once a millisecond at most; a dump may give any number the same time, and
// each of them would look at the whole window.
constexpr std::int32_t fullestWindow = 4096;

/// The first time behind `time` at which there is a sample; without one that of the newest sample.
/// REQUIRES: samples.
double earliestBehind(const SampleBuffer& samples, double time) {
    double earliest = std::numeric_limits<double>::infinity();
    if (samples.isAscending()) {
        const std::size_t index = samples.firstAfter(time);
        if (index < samples.size())
            earliest = samples[index].time;
    } else {
        for (const SensorSample& sample : samples)
            if (sample.time > time)
                earliest = std::min(earliest, sample.time);
    }
    return std::isfinite(earliest) ? earliest : samples.back().time;
}

}  // namespace

IndexRange InertialSensor::findBufferRange(double time, double length) const {
    const LogScope scope("InertialSensor::findBufferRange", __LINE__);
    auto first = static_cast<std::int32_t>(bufferedData.countUpTo(time)) - 1;
    const auto last = static_cast<std::int32_t>(bufferedData.countUpTo(time + length)) - 1;
    if (last >= 0 && first < 0 && bufferedData[0].time > time)
        first = 0;
    if (first < 0 || last < 0)
        throw CalibrationException("Failed to find buffer range. Inner error");
    return {first, last};
}

bool InertialSensor::hasSettled(bool adapt) {
    const LogScope scope("InertialSensor::hasSettled", __LINE__);
    const IndexRange range = bufferedData.empty()
                                 ? invalidRange
                                 : findBufferRange(bufferedData.back().time - windowMs, windowMs);
    if (range.last - range.first >= fullestWindow)
        return false;
    const double spread = maxAxisRange(bufferedData, range);
    if (!adapt && spread > stableRangeLimit)
        return false;
    const double deviation = maxAxisDeviation(bufferedData, range);
    if (adapt) {
        stableRangeLimit = std::min(stableRangeLimit, std::max(stableFloor, noiseMargin * spread));
        stableDeviationLimit =
            std::min(stableDeviationLimit, std::max(stableFloor, noiseMargin * deviation));
    }
    return !(deviation > stableDeviationLimit) && !(spread > stableRangeLimit);
}

Vector InertialSensor::recentMedian() const {
    const LogScope scope("InertialSensor::recentMedian", __LINE__);
    if (bufferedData.empty())
        throw CalibrationException("invalid buffer range");
    return medianOfRange(bufferedData,
                         findBufferRange(bufferedData.back().time - windowMs, windowMs));
}

double InertialSensor::stableTimeAfter(double time) const {
    const LogScope scope("InertialSensor::stableTimeAfter", __LINE__);
    const IndexRange start = findBufferRange(time, windowMs);
    if (start.last - start.first < 2)
        return 0.0;
    const double deviationLimit = noiseMargin * maxAxisDeviation(bufferedData, start);
    const double rangeLimit = noiseMargin * maxAxisRange(bufferedData, start);
    double k = 1.0;
    while (bufferedData.back().time > time + extensionStep * k) {
        const double windowStart = time + extensionStep * k;
        const IndexRange range = findBufferRange(windowStart, windowMs);
        if (maxAxisRange(bufferedData, range) > rangeLimit ||
            maxAxisDeviation(bufferedData, range) > deviationLimit)
            break;
        k = std::max(k + 1.0, std::floor((nextChange(windowStart) - time) / extensionStep) - 1.0);
    }
    return extensionStep * (k - 1.0);
}

double InertialSensor::nextChange(double start) const {
    return std::min(earliestBehind(bufferedData, start),
                    earliestBehind(bufferedData, start + windowMs) - windowMs);
}

}  // namespace tavoren
