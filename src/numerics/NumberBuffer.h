#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <vector>

namespace tavoren {

/// A fixed number of doubles, zero at first. Up to `inlineCapacity` of them live inside the object,
/// so that the many small vectors and matrices of the sample loops need no heap block.
template <std::size_t inlineCapacity>
class NumberBuffer {
  public:
    NumberBuffer() = default;
    explicit NumberBuffer(std::size_t size) { grow(size); }
    explicit NumberBuffer(std::span<const double> numbers) : NumberBuffer(numbers.size()) {
        std::copy(numbers.begin(), numbers.end(), data());
    }

    std::size_t size() const { return heap.empty() ? inlineSize : heap.size(); }
    double* data() { return heap.empty() ? inlineNumbers.data() : heap.data(); }
    const double* data() const { return heap.empty() ? inlineNumbers.data() : heap.data(); }

    /// Appends zeros up to `newSize`; never shrinks.
    void grow(std::size_t newSize) {
        if (newSize <= size())
            return;
        if (heap.empty() && newSize <= inlineCapacity) {
            inlineSize = newSize;
            return;
        }
        if (heap.empty())
            heap.assign(inlineNumbers.begin(), inlineNumbers.begin() + inlineSize);
        heap.resize(newSize);
    }

  private:
    std::array<double, inlineCapacity> inlineNumbers{};
    std::size_t inlineSize = 0;
    std::vector<double> heap;  ///< all numbers, once there are too many to be kept inline
};

}  // namespace tavoren
