#include "numerics/Statistics.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>

#include "common/CalibrationException.h"
#include "common/Text.h"
#include "numerics/Interpolation.h"

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
            const double mean = std::accumulate(axis.begin(), axis.end(), 0.0) / static_cast<double>(axis.size());
            const double squares =
                std::inner_product(axis.begin(), axis.end(), axis.begin(), 0.0) / static_cast<double>(axis.size());
            noisiest = std::max(noisiest, std::sqrt(squares - mean * mean));
            EXPECT_EQ(medians[static_cast<int>(k)], (axis[(axis.size() - 1) / 2] + axis[axis.size() / 2]) / 2.0);
        }
        EXPECT_EQ(maxAxisRange(samples, range), widest);
        EXPECT_NEAR(maxAxisDeviation(samples, range), noisiest, 1e-6);
    }
}

TEST(StatisticsTest, Medians) {
    using Case = std::pair<std::vector<double>, std::string>;
    for (const auto& [values, result] :
         {Case{{1.0, 10.0, 3.0, 2.0}, "2.500000"}, Case{{10.0, 1.0, 2.0}, "2.000000"}, Case{{nan, 3.0, 1.0}, "3.000000"},
          Case{{nan, nan, 7.0, 1.0, 5.0}, "7.000000"}, Case{{nan, 2.0}, "nan"}, Case{{}, "nan"}})
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

TEST(InterpolationTest, HoldsTheEndsAndFollowsTheLineBetween) {
    const std::vector<double> times = {1.0, 2.0, 4.0};
    const std::vector<double> values = {10.0, 20.0, -20.0};
    for (const auto& [time, value] : {std::pair{0.0, 10.0}, {1.0, 10.0}, {1.25, 12.5}, {3.0, 0.0}, {4.0, -20.0}, {9.0, -20.0}})
        EXPECT_EQ(interpolate(times, values, time), value) << time;
    EXPECT_EQ(interpolate(std::vector{3.0}, std::vector{7.0}, 5.0), 7.0);
    for (std::size_t size = 2; size <= 9; ++size) {
        std::vector<double> even(size);
        std::iota(even.begin(), even.end(), 0.0);
        for (double time = 0.25; time < even.back(); time += 0.25)
            EXPECT_EQ(findInterval(even, time), static_cast<int>(time)) << size;
    }
}

TEST(InterpolationTest, EndsOnTimesInAnyOrder) {
    const std::vector<std::vector<double>> lists = {
        {0.0, 9.0, 2.0, 8.0, 1.0, 10.0}, {0.0, nan, nan, 10.0}, {5.0, 5.0}, {9.0, 0.0}};
    for (const auto& times : lists) {
        for (const double t : {-1.0, 0.5, 3.0, 8.5, 20.0, nan}) {
            const int i = findInterval(times, t);
            EXPECT_TRUE(i >= 0 && i + 1 < static_cast<int>(times.size())) << t;
        }
    }
}

TEST(InterpolationTest, ResamplesEachAxis) {
    const std::vector<SensorSample> source = {{0.0, {0.0, 10.0, -1.0}}, {10.0, {20.0, 30.0}}};
    const std::vector<SensorSample> target = {{-5.0, {}}, {2.5, {1.0}}, {10.0, {}}};
    const auto result = resampleAtTimes(source, target);
    ASSERT_EQ(result.size(), 3U);
    EXPECT_EQ(listText(result[0]) + listText(result[1]), "0.000000,10.000000,-1.000000;5.000000,15.000000,-0.750000;");
    EXPECT_EQ(listText(result[2]), "20.000000,30.000000,0.000000;");
    EXPECT_TRUE(resampleAtTimes({}, {}).empty());
}

}  // namespace
}  // namespace tavoren
