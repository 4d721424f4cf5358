#include "numerics/Statistics.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "common/CalibrationException.h"
#include "numerics/SampleAxes.h"

namespace tavoren {

namespace {

using Axes = std::array<double, 3>;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double smallestPositive = std::numeric_limits<double>::min();

std::span<const SensorSample> samplesOf(std::span<const SensorSample> buffer, IndexRange range) {
    const auto size = static_cast<std::int64_t>(buffer.size());
    if (range.first < 0 || range.first >= size || range.last < 0 || range.last >= size)
        throw CalibrationException("invalid buffer range");
    const std::int64_t count = std::int64_t{range.last} - range.first + 1;
    return buffer.subspan(static_cast<std::size_t>(range.first),
                          static_cast<std::size_t>(std::max(count, std::int64_t{0})));
}

double deviation(double sum, double squares, std::size_t count) {
    const auto n = static_cast<double>(count);
    const double mean = sum / n;
    return std::sqrt(squares / n - mean * mean);
}

// Not-a-number leaves the first argument of std::max in place.
double largestOf(const Axes& axes) {
    double largest = smallestPositive;
    for (const double x : axes)
        largest = std::max(largest, x);
    return largest;
}

double medianOfAxis(std::span<const SensorSample> samples, std::size_t axis) {
    std::vector<double> values;
    values.reserve(samples.size());
    for (const SensorSample& sample : samples)
        values.push_back(axesOf(sample)[axis]);
    return median(std::move(values));
}

}  // namespace

double standardDeviation(std::span<const double> values) {
    double sum = 0.0;
    double squares = 0.0;
    for (const double x : values) {
        sum += x;
        squares += x * x;
    }
    return deviation(sum, squares, values.size());
}

double median(std::vector<double> values) {
    if (values.empty())
        return std::numeric_limits<double>::quiet_NaN();
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end(), nanLast);
    if (values.size() % 2 == 1)
        return *middle;
    return (*std::max_element(values.begin(), middle, nanLast) + *middle) / 2.0;
}

Vector medianOfRange(std::span<const SensorSample> buffer, IndexRange range) {
    if (std::int64_t{range.last} - range.first + 1 <= 0)
        return {};
    const auto samples = samplesOf(buffer, range);
    Vector result(static_cast<int>(samples.front().values.size()));
    for (int k = 0; k < result.size(); ++k)
        result[k] = medianOfAxis(samples, static_cast<std::size_t>(k));
    return result;
}

double maxAxisRange(std::span<const SensorSample> buffer, IndexRange range) {
    if (buffer.empty())
        return 0.0;
    Axes low = {infinity, infinity, infinity};
    Axes high = {-infinity, -infinity, -infinity};
    for (const SensorSample& sample : samplesOf(buffer, range)) {
        const Axes axes = axesOf(sample);
        for (std::size_t k = 0; k < axes.size(); ++k) {
            low[k] = std::min(low[k], axes[k]);
            high[k] = std::max(high[k], axes[k]);
        }
    }
    return largestOf({high[0] - low[0], high[1] - low[1], high[2] - low[2]});
}

double maxAxisDeviation(std::span<const SensorSample> buffer, IndexRange range) {
    const auto samples = samplesOf(buffer, range);
    Axes sum{};
    Axes squares{};
    for (const SensorSample& sample : samples) {
        const Axes axes = axesOf(sample);
        for (std::size_t k = 0; k < axes.size(); ++k) {
            sum[k] += axes[k];
            squares[k] += axes[k] * axes[k];
        }
    }
    const std::size_t n = samples.size();
    return largestOf({deviation(sum[0], squares[0], n), deviation(sum[1], squares[1], n),
                      deviation(sum[2], squares[2], n)});
}

}  // namespace tavoren
