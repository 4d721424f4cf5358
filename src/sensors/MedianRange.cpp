#include "sensors/MedianRange.h"

#include <algorithm>

#include "numerics/Statistics.h"

namespace tavoren {

double MedianRange::over(std::span<const SensorSample> samples, IndexRange span) {
    if (span.first != start || span.last - halfWindow < nextCentre - 1) {
        *this = MedianRange();
        start = span.first;
        nextCentre = span.first + halfWindow;
    }
    for (; nextCentre <= span.last - halfWindow; ++nextCentre)
        addWindow(samples.subspan(static_cast<std::size_t>(nextCentre - halfWindow),
                                  static_cast<std::size_t>(2 * halfWindow + 1)));
    double largest = std::numeric_limits<double>::min();
    for (const auto& [low, high] : extents)
        largest = std::max(largest, high - low);
    return largest;
}

void MedianRange::addWindow(std::span<const SensorSample> window) {
    for (std::size_t axis = 0; axis < extents.size(); ++axis) {
        std::array<double, 2 * halfWindow + 1> values{};
        for (std::size_t k = 0; k < values.size(); ++k)
            values[k] = window[k].values[axis];
        std::nth_element(values.begin(), values.begin() + halfWindow, values.end(), nanLast);
        auto& [low, high] = extents[axis];
        low = std::min(low, values[halfWindow]);
        high = std::max(high, values[halfWindow]);
    }
}

}  // namespace tavoren
