#include <cmath>
#include <limits>

#include "common/CalibrationException.h"
#include "control/Process.h"
#include "frame/Logger.h"
#include "frame/LogScope.h"
#include "numerics/SingularValues.h"
#include "sensors/InertialSensor.h"

namespace tavoren {

std::vector<std::int64_t> InertialSensor::findIndex() const {
    constexpr const char* function = "InertialSensor::findIndex";
    const LogScope scope(function, __LINE__, LogScope::Form::entered);
    const auto logThrown = [](const std::string& reason) {
        Logger::write(LogLevel::error, function, __LINE__,
                      "Calibration exception was thrown from findIndex, " + reason);
    };
    const std::vector<double>& times = process().segmentTimes;
    if (bufferedData.empty()) {
        logThrown("no data was sampled for " + name);
        throw CalibrationException(displayName() + " Calibration Error: No data was available");
    }
    if (times.empty()) {
        logThrown("no segmentTimes were set for " + name);
        throw CalibrationException(displayName() +
                                   " Calibration Error: Failed splitting data to segments");
    }
    const auto end = static_cast<std::int64_t>(bufferedData.size());
    std::vector<std::int64_t> index;
    for (std::size_t i = 0; i < times.size(); ++i) {
        index.push_back(static_cast<std::int64_t>(bufferedData.firstAfter(times[i])));
        if (index[i] == end && i + 1 < times.size()) {
            logThrown("ind is -1");
            throw CalibrationException(name +
                                       " Calibration Error: Failed splitting data to segments");
        }
    }
    for (std::size_t i = 1; i + 1 < times.size(); ++i)
        if (index[i] == index[i - 1])
            throw CalibrationException(
                name + " Calibration Error: No data was sampled during stage " + std::to_string(i));
    index.back() = end;  // the last segment runs to the end of the data
    return index;
}

void InertialSensor::ComputeStaticSegmentsMeans() {
    const LogScope scope("InertialSensor::ComputeStaticSegmentsMeans", __LINE__,
                         LogScope::Form::entered);
    const std::vector<std::int64_t> index = findIndex();
    for (int step = 0; step < process().stepCount; ++step) {
        const auto k = 2 * static_cast<std::size_t>(step);
        Vector mean = row(segmentValues, step);
        for (std::int64_t j = index[k]; j < index[k + 1]; ++j)
            mean += sampleVector(j);
        mean = mean / static_cast<double>(index[k + 1] - index[k]);
        segmentValues.setRow(step, mean);
        for (const double element : mean)
            if (std::isnan(element) || element == std::numeric_limits<double>::infinity())
                throw CalibrationException("Infinity value was found. Calibration is invalid for " +
                                           name);
    }
}

void InertialSensor::ComputeStaticSegmentsStds() {
    const LogScope scope("InertialSensor::ComputeStaticSegmentsStds", __LINE__,
                         LogScope::Form::entered);
    const std::vector<std::int64_t> index = findIndex();
    for (int step = 0; step < process().stepCount; ++step) {
        const auto k = 2 * static_cast<std::size_t>(step);
        Vector squares = row(segmentDeviations, step);
        for (std::int64_t j = index[k]; j < index[k + 1]; ++j) {
            const Vector distance = row(segmentValues, step) - sampleVector(j);
            squares += elementProduct(distance, distance);
        }
        segmentDeviations.setRow(
            step, elementSqrt(squares / static_cast<double>(index[k + 1] - index[k])));
    }
}

void InertialSensor::computePositions() {
    const LogScope scope("InertialSensor::computePositions", __LINE__);
    const std::vector<std::int64_t> index = findIndex();
    const std::size_t stride = process().segmentStride();
    const bool withTurns = stride == 4;
    for (int position = 0; position < positionCount; ++position) {
        const std::size_t k = 3 + static_cast<std::size_t>(position) * stride;
        std::vector<std::array<std::int64_t, 2>> ranges;
        if (k - 2 < index.size())
            ranges.push_back({index[k - 3], index[k - 2] - 1});
        if (withTurns && k < index.size())  // before and after a full turn: the same position
            ranges.push_back({index[k - 1], index[k]});
        segmentValues.setRow(position, medianAndDeviation(ranges));
    }
    whiteNoise = whiteNoise / positionCount;
    for (double& noise : whiteNoise)
        if (std::isnan(noise))
            noise = defaultNoise;
}

Vector InertialSensor::medianAndDeviation(std::span<const std::array<std::int64_t, 2>> ranges) {
    const LogScope scope("InertialSensor::medianAndDeviation", __LINE__);
    Vector medians(3);
    Vector deviations(3);
    for (int axis = 0; axis < 3; ++axis) {
        std::vector<double> values;
        for (const auto& [first, last] : ranges)
            for (std::int64_t j = first; j < last; ++j)
                values.push_back(bufferedData[static_cast<std::size_t>(j)]
                                     .values[static_cast<std::size_t>(axis)]);
        deviations[axis] = standardDeviation(values);
        medians[axis] = median(std::move(values));
    }
    whiteNoise += deviations;
    return medians;
}

Vector InertialSensor::calcWhiteNoise() const {
    const LogScope scope("InertialSensor::calcWhiteNoise", __LINE__);
    const std::vector<std::int64_t> index = findIndex();
    double sum = 0.0;
    std::int64_t total = 0;
    for (int step = 0; step < segmentValues.rows(); ++step) {
        const auto k = 2 * static_cast<std::size_t>(step);
        if (k + 1 >= index.size())
            break;
        double normSum = 0.0;
        for (std::int64_t j = index[k]; j < index[k + 1]; ++j)
            normSum += norm(sampleVector(j));
        const std::int64_t count = index[k + 1] - index[k];
        const double mean = normSum / static_cast<double>(count);
        for (std::int64_t j = index[k]; j < index[k + 1]; ++j) {
            const double distance = norm(sampleVector(j)) - mean;
            sum += distance * distance;
        }
        total += count;
    }
    if (total == 0)
        throw CalibrationException("Error. Divider is zero.");
    const double noise = std::sqrt(sum / static_cast<double>(total));
    return {noise, noise, noise};
}

Matrix InertialSensor::calcAxisMapping(const Matrix& matrix) {
    const LogScope scope("InertialSensor::calcAxisMapping", __LINE__);
    Matrix mapping(3, 3);
    for (int r = 0; r < 3; ++r) {
        const int c = getIndexOfAbsoluteMax(row(matrix, r));
        mapping(r, c) = matrix(r, c) > 0.0 ? 1.0 : -1.0;
    }
    return mapping;
}

void InertialSensor::splitScaleAndMapping(bool reduce) {
    const LogScope scope("InertialSensor::splitScaleAndMapping", __LINE__);
    axisMapping = calcAxisMapping(scaleMatrix);
    scaleMatrix = scaleMatrix * transpose(axisMapping);
    if (reduce)
        scaleMatrix = SingularValues(scaleMatrix).singular;
}

}  // namespace tavoren
