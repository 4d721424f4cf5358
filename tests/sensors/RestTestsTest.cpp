#include <gtest/gtest.h>

#include "common/Utf8.h"
#include "sensors/Accelerometer.h"
#include "sensors/FakeRun.h"
#include "sensors/Gyroscope.h"

namespace tavoren {
namespace {

std::string shownBy(const std::function<void()>& action) {
    testing::internal::CaptureStdout();
    action();
    return testing::internal::GetCapturedStdout();
}

TEST(Asserts, SayWhatIsOffInTheirOwnForms) {
    const Vector value{1.0, -0.25, 0.0};
    const Vector expected{1.0, 0.0, 0.0};
    bool passed = true;
    EXPECT_EQ(shownBy([&] { passed = InertialSensor::vectorAssert(value, expected, 0.04, L"a test", L"!"); }),
              "Error in a test\n"
              "Error in vector assert. Vector:   1.000000  -0.250000   0.000000 \n"
              " Expected vector:   1.000000   0.000000   0.000000 \n"
              " distance is bigger than threshold of 0.04 !\n\n");
    EXPECT_FALSE(passed);
    EXPECT_TRUE(InertialSensor::vectorAssert(value, expected, 0.25, L"", L""));
    EXPECT_TRUE(InertialSensor::angleAssert({359.0}, {1.0}, 2.0, L"", L""));
    EXPECT_FALSE(InertialSensor::angleAssert({358.9}, {1.0}, 2.0, L"", L""));
    EXPECT_FALSE(InertialSensor::vectorAssert({0.0 / 0.0}, {0.0}, 9.0, L"", L""));
    EXPECT_FALSE(InertialSensor::vectorAssert({0.0}, {0.0}, 0.0 / 0.0, L"", L""));
    EXPECT_EQ(shownBy([&] { passed = InertialSensor::doubleAssert(100.0, 1234567.0, 0.5, L"b", L""); }),
              "Error in b\nError in double assert. Value: 100 Expected value: 1.23457e+06 distance "
              "is bigger than threshold of 0.5 \n");
    EXPECT_FALSE(passed);
    EXPECT_TRUE(InertialSensor::spikeAssert(3, L"", 3));
    EXPECT_EQ(shownBy([] { InertialSensor::spikeAssert(4, L"c", 3); }), "Error in c\nSpike detection error, spike count: 4\n");
}

TEST(RestTests, AJumpHidesTheNextOne) {
    for (const auto& [values, spikes] : std::vector<std::pair<std::vector<double>, int>>{
             {{0, 2, 2, 2, 2, 2}, 1},
             {{0, 2, 0, 0, 0, 0}, 1},
             {{0, 2, 0, 2, 2, 2}, 2},
             {{0, 0, 0, 0, 0, 2}, 1},
             {{0, 1, 2, 3, 4, 5}, 0},
         }) {
        FakeRun run(SequenceKind::fourSteps, RunMode::test);
        Accelerometer sensor(staticAccelerometer);
        sensor.setSensorManager(run);
        run.fillSegments(sensor, 6, [&row = values](int, int k) {
            return SampleValues{row[static_cast<std::size_t>(k)], 0.0, 0.0};
        });
        EXPECT_EQ(sensor.countSpikes(1, 1.0), spikes);
    }
}

/// A four-step test at rest: gravity as expected, but in one step multiplied.
struct RestRow {
    int step;
    double factor;
    int kind;  // of the failure reported to the manager, -1 for none
};

TEST(RestTests, InnerStepsAreHeldInTheHand) {
    for (const RestRow& row : std::vector<RestRow>{
             {0, 1.0, -1}, {0, 1.15, 0}, {3, 1.15, 0}, {1, 1.15, -1}, {2, 1.29, -1}, {2, 1.31, 0}, {1, -1.0, 1}}) {
        FakeRun run(SequenceKind::fourSteps, RunMode::test);
        Accelerometer sensor(staticAccelerometer);
        sensor.setSensorManager(run);
        sensor.buildExpectedValues();
        const Matrix gravity = sensor.expectedValues;
        run.fillSegments(sensor, 8, [&](int segment, int k) {
            const int step = segment / 2;
            const double size = step == row.step ? row.factor : 1.0;
            const double shake = k % 2 == 0 ? 0.01 : -0.01;
            return SampleValues{gravity(step, 0) * size + shake, gravity(step, 1) * size, gravity(step, 2) * size};
        });
        bool passed = false;
        shownBy([&] { passed = sensor.testCalibration(); });
        EXPECT_EQ(passed, row.kind < 0) << row.step << row.factor;
        ASSERT_EQ(run.failures.count("Accelerometer"), row.kind < 0 ? 0U : 1U);
        EXPECT_TRUE(passed || static_cast<int>(run.failures["Accelerometer"]) == row.kind);
    }
}

TEST(RestTests, OnePositionTellsNoiseSpikesAndMean) {
    struct Row {
        double z, shake;
        int spikes;
        std::string shown;
    };
    for (const Row& row : {
             Row{1.0, 0.001, 0, ""},
             Row{1.0, 0.0, 3, ""},
             Row{1.0, 0.0, 4, "[Failure] Spikes number detected on Accelerometer is above allowed threshold of 3\n"},
             Row{1.0, 0.05, 0,
                 "[Failure] Noise on Accelerometer sensor exceeded the threshold on axis:Y\n"
                 "Noise: 0.050000 , maximum allowed is 0.040000\n"},
             Row{0.5, 0.0, 0,
                 "[Failure] Average value error in Accelerometer above allowed threshold 0.100000\n"
                 "Expected:   0.000000   0.000000   1.000000 \nResults:    0.000000   0.000000   0.500000 \n\n"},
         }) {
        FakeRun run(SequenceKind::minimal, RunMode::test);
        Accelerometer sensor(staticAccelerometer);
        sensor.setSensorManager(run);
        for (int k = 0; k < 4000; ++k) {
            const double shake = k % 2 == 0 ? row.shake : -row.shake;
            const double spike = k % 1000 < row.spikes - 1 && k / 1000 == 0 ? 0.6 : k == 3000 && row.spikes > 0 ? -0.6 : 0.0;
            sensor.dataRecieved({10.0 * k, {0.0, shake, row.z + spike}});
        }
        bool passed = false;
        EXPECT_EQ(shownBy([&] { passed = sensor.testCalibration(); }), row.shown);
        EXPECT_EQ(passed, row.shown.empty());
        EXPECT_EQ(run.failures.empty(), row.shown.empty());
    }
}

}  // namespace
}  // namespace tavoren
