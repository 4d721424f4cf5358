#include "numerics/Interpolation.h"

#include <gtest/gtest.h>

#include <limits>
#include <numeric>

namespace tavoren {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TEST(InterpolationTest, IntervalIsTheOneThatHoldsTheTime) {
    for (int size = 2; size <= 9; ++size) {
        std::vector<double> times(static_cast<std::size_t>(size));
        std::iota(times.begin(), times.end(), 0.0);
        for (int k = 1; k < 4 * (size - 1); ++k)
            EXPECT_EQ(findInterval(times, k / 4.0), k / 4) << size << ' ' << k;
    }
}

TEST(InterpolationTest, HoldsTheEndsAndFollowsTheLineBetween) {
    const std::vector<double> times = {1.0, 2.0, 4.0};
    const std::vector<double> values = {10.0, 20.0, -20.0};
    for (const auto& [time, value] : {std::pair{0.0, 10.0}, {1.0, 10.0}, {1.25, 12.5}, {3.0, 0.0}, {4.0, -20.0}, {9.0, -20.0}})
        EXPECT_EQ(interpolate(times, values, time), value) << time;
    EXPECT_EQ(interpolate(std::vector{3.0}, std::vector{7.0}, 5.0), 7.0);
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
