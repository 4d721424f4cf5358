#include <gtest/gtest.h>

#include "common/CalibrationException.h"
#include "sensors/ExpectThrow.h"
#include "sensors/LightRun.h"

namespace tavoren {
namespace {

TEST(AmbientLight, StoresTheMedianOfThree) {
    LightRun run(1);
    const auto sensor = run.add();
    EXPECT_EQ(sensor->measuredRate(), 50.0);
    for (const double value : {10.0, 100.0, 10.0, 7.0, 8.0, 0.0 / 0.0, 9.0})
        run.feed(1, value, value);
    std::vector<double> stored;
    for (const SensorSample& sample : sensor->bufferedData)
        stored.push_back(sample.values[0]);
    EXPECT_EQ(stored, (std::vector<double>{10.0, 10.0, 8.0, 8.0, 9.0}));
    EXPECT_EQ(sensor->bufferedData[0].time, 200.0);
    EXPECT_TRUE(sensor->dataRecieved({610.0, {}}));  // a dump may hold samples without values
    // The first interval begins at time 0 and is lost; each look folds the last one in again.
    EXPECT_EQ(sensor->sampleIntervals, (std::vector<double>{100, 100, 100, 100, 100, 10}));
    EXPECT_EQ(sensor->measuredRate(), 1000.0 / ((5 * 100.0 + 10.0) / 6));
    EXPECT_EQ(sensor->measuredRate(), 1000.0 / ((5 * 85.0 + 10.0) / 6));
}

TEST(AmbientLight, UndoesTheFactorOfTheFirmware) {
    const std::string ok = "(nothing thrown)";
    for (const auto& [record, scale, failure] : std::vector<std::tuple<ByteString, double, std::string>>{
             {{1, 0, 200, 0, 100}, 0.5, ok},
             {{1, 0, 0, 0, 100}, 1.0, ok},
             {{1, 0, 0, 1, 0}, 1.0 / 256.0, ok},
             {{}, 1.0, "No calibration entry exists for AmbientLight. Original entry must exist"},
             {{128, 0, 200, 0, 100}, 1.0, "Custom calibration data format. Cannot reverse SDT static calibration"},
             {{1, 0}, 1.0, "Invalid calibration data size"}}) {
        AmbientLight sensor(Luid{65, 0, 0, 0, Luid::staticData});
        sensor.firmwareData = record;
        EXPECT_EQ(textOf<CalibrationException>([&] { sensor.calcReverseSdt(); }), failure);
        SensorSample sample{1.0, {300.0}};
        sensor.reverseStaticCalibration(sample);
        EXPECT_EQ(sample.values[0], 300.0 * scale);
    }
}

/// A sensor with one stage of two samples for each pair of level and mean.
struct Measured {
    explicit Measured(const std::vector<std::pair<std::int32_t, double>>& stages) : run(0), sensor(run.add()) {
        for (const auto& [level, mean] : stages) {
            const auto first = static_cast<std::int32_t>(sensor->getDataSize());
            for (const double noise : {-0.5, 0.5})
                sensor->bufferedData.append({0.0, {mean + noise}});
            run.process.stepLevels.insert(run.process.stepLevels.end(), {first, first + 1});
            sensor->addLightLevel(level);
        }
    }

    std::string calibrate() {
        return textOf<CalibrationException>([this] { sensor->calibrate(); });
    }

    LightRun run;
    std::shared_ptr<AmbientLight> sensor;
};

TEST(AmbientLight, CalibratesToTwoDecimals) {
    for (const auto& [stages, outcome, multiplier] :
         std::vector<std::tuple<std::vector<std::pair<std::int32_t, double>>, std::string, double>>{
             {{{1000, 800.0}}, "(nothing thrown)", 125.0},
             {{{1000, 1000.0}, {2998, 1000.0}}, "(nothing thrown)", 199.0},  // cut, not rounded
             {{{800, 4.0}}, "(nothing thrown)", 20000.0},
             {{{1000, 4.0}}, "Invalid multiplier 250.000000 was calculated", 0.0},
             {{{100, 0.0}}, "Invalid light level of 0 was measured", 0.0},
             {{{100, -50.0}}, "Invalid multiplier -2.000000 was calculated", 0.0},
             {{}, "Invalid multiplier nan was calculated", 0.0}}) {
        Measured light(stages);
        EXPECT_EQ(light.calibrate(), outcome);
        EXPECT_EQ(light.sensor->multiplier, multiplier);
        EXPECT_EQ(light.sensor->calibrationData.size(), multiplier == 0.0 ? 0U : 66U);
    }
    using Span = std::vector<std::int32_t>;
    for (const Span& span : {Span{}, {-1, 1}, {0, 2}, {1, 0}, {2147483647, 2147483647}}) {
        Measured light({{1000, 800.0}});
        light.run.process.stepLevels = span;
        EXPECT_EQ(light.calibrate(), "Internal error");
    }
}

TEST(AmbientLight, ResultKeepsWhatTheFirmwareHolds) {
    Measured light({{10000, 100.0}});
    ByteString record{1, 9, 1, 1, 1, 3, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 1, 0, 77};
    light.sensor->firmwareData = record;
    light.calibrate();
    record[2] = 0x10, record[3] = 0x27, record[4] = 100;  // 10000 by 100
    EXPECT_EQ(light.sensor->calibrationData, record);
    EXPECT_EQ(light.sensor->resultText(), "Multiplier: 10000.000000\nDivider: 100.000000\nMultiplier/Divider: 100.000000\n");
    EXPECT_EQ(light.sensor->calibrated(std::vector<SensorSample>{{5.0, {3.0}}, {6.0, {}}}),
              (std::vector<SensorSample>{{5.0, {300.0}}, {6.0, {}}}));
}

}  // namespace
}  // namespace tavoren
