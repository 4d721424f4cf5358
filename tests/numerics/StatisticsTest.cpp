#include "numerics/Statistics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>

#include "common/CalibrationException.h"
#include "common/Text.h"

namespace tavoren {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double smallest = 2.2250738585072014e-308;

std::vector<SensorSample> randomSamples(std::size_t count, unsigned seed) {
    std::mt19937 generator(seed);
    std::normal_distribution<double> number(2.0, 5.0);
    std::vector<SensorSample> samples(count);
    for (SensorSample& sample : samples)
        sample.values = {number(generator), number(generator), number(generator)};
    return samples;
}

double exactDeviation(const std::vector<double>& values) {
    const auto n = static_cast<long double>(values.size());
    const long double mean = std::accumulate(values.begin(), values.end(), 0.0L) / n;
    long double total = 0.0L;
    for (const double x : values)
        total += (x - mean) * (x - mean);
    return static_cast<double>(std::sqrt(total / n));
}

TEST(StatisticsTest, AxisStatisticsAgreeWithASlowComputation) {
    const auto samples = randomSamples(300, 5);
    for (const IndexRange range : {IndexRange{0, 299}, {17, 18}, {40, 251}, {9, 9}}) {
        double widest = smallest;
        double noisiest = smallest;
        const Vector medians = medianOfRange(samples, range);
        for (std::size_t k = 0; k < 3; ++k) {
            std::vector<double> axis;
            for (int i = range.first; i <= range.last; ++i)
                axis.push_back(samples[static_cast<std::size_t>(i)].values[k]);
            std::sort(axis.begin(), axis.end());
            widest = std::max(widest, axis.back() - axis.front());
            noisiest = std::max(noisiest, exactDeviation(axis));
            EXPECT_EQ(medians[static_cast<int>(k)], (axis[(axis.size() - 1) / 2] + axis[axis.size() / 2]) / 2.0);
        }
        EXPECT_EQ(maxAxisRange(samples, range), widest);
        EXPECT_NEAR(maxAxisDeviation(samples, range), noisiest, 1e-6);
    }
}

TEST(StatisticsTest, Medians) {
    const std::vector<std::pair<std::vector<double>, std::string>> cases = {{{1.0, 10.0, 3.0, 2.0}, "2.500000"},
                                                                            {{10.0, 1.0, 2.0}, "2.000000"},
                                                                            {{nan, 3.0, 1.0}, "3.000000"},
                                                                            {{nan, nan, 7.0, 1.0, 5.0}, "7.000000"},
                                                                            {{nan, 2.0}, "nan"},
                                                                            {{}, "nan"}};
    for (const auto& [values, result] : cases)
        EXPECT_EQ(formatNumber(median(values)), result);
    const std::vector<SensorSample> uneven = {{0.0, {4.0, 6.0}}, {1.0, {2.0}}, {2.0, {9.0, 5.0}}};
    EXPECT_EQ(listText(medianOfRange(uneven, {0, 2})), "4.000000,5.000000;");
    EXPECT_TRUE(medianOfRange(uneven, {2, 1}).empty());
}

TEST(StatisticsTest, NumbersThatAreNoneDoNotCount) {
    EXPECT_EQ(standardDeviation(std::vector{3.0, 5.0}), 1.0);
    EXPECT_TRUE(std::isnan(standardDeviation({})));
    const std::vector<SensorSample> samples = {{0.0, {nan, 1.0}}, {1.0, {2.0, 4.0}}, {2.0, {}}};
    EXPECT_EQ(maxAxisRange(samples, {0, 2}), 4.0);
    EXPECT_EQ(maxAxisRange(samples, {0, 0}), smallest);
    EXPECT_EQ(maxAxisDeviation(samples, {0, 1}), 1.5);
    EXPECT_EQ(maxAxisDeviation(samples, {2, 1}), smallest);
    EXPECT_EQ(maxAxisRange({}, {5, 9}), 0.0);
}

TEST(StatisticsTest, RangesOutsideOfTheBufferAreRefused) {
    const auto samples = randomSamples(3, 1);
    constexpr int largest = std::numeric_limits<int>::max();
    for (const IndexRange range : {IndexRange{0, 3}, {3, 3}, {-1, 2}, {-largest, largest}, {0, largest}}) {
        EXPECT_THROW(maxAxisRange(samples, range), CalibrationException);
        EXPECT_THROW(maxAxisDeviation(samples, range), CalibrationException);
        EXPECT_THROW(medianOfRange(samples, range), CalibrationException);
    }
    EXPECT_THROW(maxAxisDeviation({}, {0, 0}), CalibrationException);
}

}  // namespace
}  // namespace tavoren
