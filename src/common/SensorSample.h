#pragma once

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>

namespace tavoren {

/// The values of one sample, kept inside it: one per axis or channel, three at the most.
class SampleValues {
  public:
    static constexpr std::size_t capacity = 3;

    SampleValues() = default;
    SampleValues(std::initializer_list<double> values)
        : SampleValues(std::span(values.begin(), values.size())) {}
    /// REQUIRES: at most `capacity` values.
    explicit SampleValues(std::span<const double> values)
        : count(static_cast<std::uint32_t>(values.size())) {
        assert(values.size() <= capacity);
        std::copy(values.begin(), values.end(), data.begin());
    }

    std::size_t size() const { return count; }
    double operator[](std::size_t index) const { return data[index]; }
    double& operator[](std::size_t index) { return data[index]; }
    const double* begin() const { return data.data(); }
    const double* end() const { return data.data() + count; }

    /// REQUIRES: fewer than `capacity` values so far.
    void push_back(double value) {
        assert(count < capacity);
        data[count++] = value;
    }
    void clear() { count = 0; }

    friend bool operator==(const SampleValues& a, const SampleValues& b) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }

  private:
    std::array<double, capacity> data{};
    std::uint32_t count = 0;
};

/// One reading of a sensor. A dump may hold readings without values.
struct SensorSample {
    double time = 0.0;  ///< milliseconds since the start of sampling
    SampleValues values;

    friend bool operator==(const SensorSample&, const SensorSample&) = default;
};

}  // namespace tavoren
