#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <span>

#include "common/SensorSample.h"
#include "numerics/IndexRange.h"

namespace tavoren {

/// The range that the running median of 11 samples covers in a span that grows sample by sample.
/// What one span showed is kept for the next one with the same start, so that a call costs what the
/// new samples cost.
class MedianRange {
  public:
    /// Largest minus smallest median over the windows of the span (both ends inclusive), on the
    /// axis where this is largest; the smallest positive double if no axis has any.
    double over(std::span<const SensorSample> samples, IndexRange span);

  private:
    static constexpr std::int32_t halfWindow = 5;
    static constexpr double infinity = std::numeric_limits<double>::infinity();

    struct Extent {
        double low = infinity;
        double high = -infinity;
    };

    void addWindow(std::span<const SensorSample> window);

    std::int32_t start = -1;
    std::int32_t nextCentre = 0;  ///< the first window that has not been looked at
    std::array<Extent, 3> extents;
};

}  // namespace tavoren
