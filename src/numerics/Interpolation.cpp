#include "numerics/Interpolation.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "common/MathException.h"
#include "numerics/SampleAxes.h"

namespace tavoren {

namespace {

/// Where a time lies in a list of times: at one of them, or on the way to the next one.
struct Place {
    std::size_t index = 0;
    bool between = false;
};

Place placeOf(std::span<const double> times, double t) {
    if (times.empty())
        throw MathException("Error while interpolating, there are no values");
    const std::size_t last = times.size() - 1;
    if (t <= times[0] || last == 0)
        return {0, false};
    if (t >= times[last])
        return {last, false};
    return {static_cast<std::size_t>(findInterval(times, t)), true};
}

double valueAt(Place place, std::span<const double> times, std::span<const double> values,
               double t) {
    const std::size_t i = place.index;
    if (!place.between)
        return values[i];
    return values[i] + (values[i + 1] - values[i]) * (t - times[i]) / (times[i + 1] - times[i]);
}

struct Recording {
    explicit Recording(std::span<const SensorSample> samples) {
        times.reserve(samples.size());
        for (std::vector<double>& list : values)
            list.reserve(samples.size());
        for (const SensorSample& sample : samples) {
            times.push_back(sample.time);
            const auto axes = axesOf(sample);
            for (std::size_t k = 0; k < axes.size(); ++k)
                values[k].push_back(axes[k]);
        }
    }

    std::vector<double> times;
    std::array<std::vector<double>, 3> values;
};

}  // namespace

int findInterval(std::span<const double> times, double t) {
    if (times.size() < 2)
        throw MathException("Error while interpolating, there is no interval");
    const std::size_t lastInterval = times.size() - 2;
    std::size_t low = 0;
    std::size_t high = times.size();
    std::size_t middle = high / 2;
    const auto found = [&] {
        return middle <= lastInterval && times[middle] <= t && t < times[middle + 1];
    };
    // Times that do not ascend may hold no such interval; the bounds meet all the same.
    while (!found() && high - low > 1) {
        middle = (high + low) / 2;
        if (times[middle] > t)
            high = middle;
        else
            low = middle;
    }
    return static_cast<int>(std::min(found() ? middle : low, lastInterval));
}

double interpolate(std::span<const double> times, std::span<const double> values, double t) {
    if (times.size() != values.size())
        throw MathException("Error while interpolating, times and values differ in number");
    return valueAt(placeOf(times, t), times, values, t);
}

std::vector<Vector> resampleAtTimes(std::span<const SensorSample> source,
                                    std::span<const SensorSample> target) {
    const Recording recording(source);
    std::vector<Vector> result;
    result.reserve(target.size());
    for (const SensorSample& sample : target) {
        const Place place = placeOf(recording.times, sample.time);
        const auto axis = [&](std::size_t k) {
            return valueAt(place, recording.times, recording.values[k], sample.time);
        };
        result.push_back({axis(0), axis(1), axis(2)});
    }
    return result;
}

}  // namespace tavoren
