#include <gtest/gtest.h>

#include <random>

#include "sensors/MagneticField.h"

namespace tavoren {
namespace {

/// The range of the medians of 11, computed afresh.
double slowMedianRange(const SampleBuffer& samples, double since) {
    const auto last = static_cast<int>(samples.size()) - 1;
    const int first = std::max(static_cast<int>(samples.countUpTo(since)) - 1, 0);
    double largest = std::numeric_limits<double>::min();
    for (int axis = 0; axis < 3; ++axis) {
        std::vector<double> medians;
        for (int i = first + 5; i <= last - 5; ++i)
            medians.push_back(medianOfRange(samples, {i - 5, i + 5})[axis]);
        std::sort(medians.begin(), medians.end());
        if (!medians.empty())
            largest = std::max(largest, medians.back() - medians.front());
    }
    return largest;
}

TEST(Magnetometer, RotationIsDoneWhereTheWholeSpanSaysSo) {
    std::mt19937 random{3};
    std::uniform_real_distribution<double> step(-9.0, 10.0);
    std::uniform_int_distribution<int> choice(0, 99);
    FakeRun run(SequenceKind::full);
    Magnetometer sensor(staticMagnetometer);
    sensor.setSensorManager(run);
    EXPECT_FALSE(sensor.isRotationDone(0.0));
    double since = 0.0;
    double time = 0.0;
    Vector field(3);
    for (int k = 0; k < 700; ++k) {
        field += {step(random), step(random), step(random)};
        const double spike = choice(random) < 5 ? 1000.0 : 0.0;
        sensor.dataRecieved({time, {field[0] + spike, -field[1], field[2]}});
        if (choice(random) < 80) {  // not every sample is looked at
            const double range = slowMedianRange(sensor.bufferedData, since);
            sensor.movementRangeLimit = 0.9999 * range;
            ASSERT_TRUE(sensor.isRotationDone(since)) << k;
            sensor.movementRangeLimit = range;  // strictly above only
            ASSERT_FALSE(sensor.isRotationDone(since)) << k;
        }
        if (choice(random) == 0)
            since = choice(random) < 50 ? time : 0.7 * time;  // the next turn, or an earlier one
        time += choice(random) < 10 ? 0.0 : 10.0;
    }
}

}  // namespace
}  // namespace tavoren
