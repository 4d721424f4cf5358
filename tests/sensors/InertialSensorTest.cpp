#include "sensors/InertialSensor.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "sensors/Accelerometer.h"
#include "sensors/ExpectThrow.h"
#include "sensors/FakeRun.h"
#include "sensors/Gyroscope.h"
#include "sensors/StaticRecord.h"

namespace tavoren {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

SensorSample sampleAt(double time, double x = 0.0, double y = 0.0, double z = 0.0) {
    return {time, {x, y, z}};
}

/// An accelerometer in a run of its own.
struct Fixture {
    explicit Fixture(SequenceKind kind, RunMode mode = RunMode::calibrate, const Luid& luid = staticAccelerometer)
        : run(kind, mode), sensor(luid) {
        sensor.setSensorManager(run);
    }
    FakeRun run;
    Accelerometer sensor;
};

TEST(InertialSensor, UndoesWhatTheFirmwareDid) {
    Accelerometer model(staticAccelerometer);
    model.scaleMatrix = Matrix(3, 3, {1.02, 0.01, -0.02, 0.0, 0.97, 0.03, 0.01, 0.0, 1.05});
    model.axisMapping = Matrix(3, 3, {0.0, -1.0, 0.0, 0.0, 0.0, 1.0, 1.0, 0.0, 0.0});
    model.offset = {0.021, -0.013, 0.2};
    model.convertToFWForamt();

    Accelerometer sensor(staticAccelerometer);
    sensor.setFirmwareCalibration(model.calibrationData);
    sensor.calcReverseSdt();
    const Vector raw{0.3, -0.7, 0.9};
    const Vector reported = model.scaleMatrix * model.axisMapping * (raw - model.offset);
    SensorSample sample = sampleAt(0.0, reported[0], reported[1], reported[2]);
    sensor.reverseStaticCalibration(sample);
    EXPECT_LT(maxAbs(Vector(sample.values) - raw), 2e-4);  // the record holds 1 part in 32767 and whole micro-g
}

TEST(InertialSensor, RefusesToUndoARecordItCannotInvert) {
    const std::string size = "Invalid calibration data size";
    using Row = std::pair<ByteString, std::string>;
    for (const auto& [bytes, text] :
         {Row{ByteString(40), "Failed to invert SDT data"}, Row{ByteString(37), size}, Row{ByteString(1), size},
          Row{{200}, "Custom calibration data format. Cannot reverse SDT static calibration"}, Row{{}, "(nothing thrown)"}}) {
        Accelerometer sensor(staticAccelerometer);
        sensor.firmwareData = bytes;
        EXPECT_EQ(textOf<CalibrationException>([&sensor = sensor] { sensor.calcReverseSdt(); }), text);
    }
}

TEST(InertialSensor, FindsTheSegmentsOrSaysWhatIsMissing) {
    using Row = std::tuple<std::vector<double>, std::vector<double>, std::vector<std::int64_t>, std::string>;
    const std::string ok = "(nothing thrown)";
    const std::vector<double> steady{10.0, 20.0, 30.0, 40.0};
    const std::string error = " Calibration Error: ";
    for (const auto& [sampleTimes, segmentTimes, expected, text] : {
             Row{steady, {0.0, 10.0, 25.0, 99.0}, {0, 1, 2, 4}, ok},
             Row{steady, {0.0, 10.0, 30.0, 30.0}, {0, 1, 3, 4}, ok},
             Row{steady, {10.0, 10.0, 25.0, 30.0}, {}, "Accelerometer" + error + "No data was sampled during stage 1"},
             Row{steady, {0.0, 25.0, 25.0, 30.0}, {}, "Accelerometer" + error + "No data was sampled during stage 2"},
             Row{steady, {0.0, 10.0, 40.0, 50.0}, {}, "Accelerometer" + error + "Failed splitting data to segments"},
             Row{steady, {}, {}, "Accelerometer_2" + error + "Failed splitting data to segments"},
             Row{{}, {0.0, 1.0}, {}, "Accelerometer_2" + error + "No data was available"},
         }) {
        Fixture f(SequenceKind::fourSteps, RunMode::calibrate, secondOf(staticAccelerometer));
        f.run.process.segmentTimes = segmentTimes;
        for (const double time : sampleTimes)
            f.sensor.bufferedData.append(sampleAt(time));
        std::vector<std::int64_t> index;
        EXPECT_EQ(textOf<CalibrationException>([&] { index = f.sensor.findIndex(); }), text);
        EXPECT_EQ(index, expected);
    }
}

TEST(InertialSensor, PositionsLeaveOutTheLastSampleOfTheFirstSegmentOnly) {
    Fixture f(SequenceKind::full);
    // A last sample of each segment that would move the median if it counted.
    const auto valueOf = [](int segment, int k) { return SampleValues{k == 2 ? 1000.0 : segment + 0.1 * k, 0.0, 1.0}; };
    f.run.fillSegments(f.sensor, 3, valueOf);
    f.sensor.segmentValues.setRows(4);
    f.sensor.computePositions();
    // Before the turn {0, 0.1}, after it {2, 2.1, 1000}.
    const Matrix& values = f.sensor.segmentValues;
    EXPECT_LT(maxAbs(Vector{values(0, 0), values(1, 0), values(3, 0), values(3, 2)} - Vector{2.0, 6.0, 12.05, 1.0}), 1e-12);
}

TEST(InertialSensor, MeansRefuseWhatIsNoNumberButLetNegativeInfinityPass) {
    for (const double bad : {nan, infinity, -infinity}) {
        Fixture f(SequenceKind::fourSteps, RunMode::test);
        f.run.fillSegments(f.sensor, 4, [bad](int segment, int) { return SampleValues{segment == 2 ? bad : 1.0, 0.0, 0.0}; });
        f.sensor.segmentValues.setRows(4);
        EXPECT_EQ(textOf<CalibrationException>([&] { f.sensor.ComputeStaticSegmentsMeans(); }),
                  bad == -infinity ? "(nothing thrown)" : "Infinity value was found. Calibration is invalid for Accelerometer");
    }
}

TEST(InertialSensor, AxisMappingTakesTheLargestElementOfEachRow) {
    EXPECT_EQ(wideListText(InertialSensor::calcAxisMapping(identity(3))), wideListText(identity(3)));
    EXPECT_EQ(trace(InertialSensor::calcAxisMapping(identity(3) * -0.5)), -3.0);
    const Matrix sharedColumn(3, 3, {2.0, 0.0, 1.0, 3.0, 0.0, 1.0, 0.0, 0.0, -1.0});
    EXPECT_EQ(determinant3(InertialSensor::calcAxisMapping(sharedColumn)), 0.0);
}

TEST(InertialSensor, SettlesWithinLimitsThatOnlyShrink) {
    Fixture f(SequenceKind::full);
    EXPECT_EQ(textOf<CalibrationException>([&] { f.sensor.hasSettled(false); }), "invalid buffer range");
    for (int k = 0; k <= 200; ++k)
        f.sensor.bufferedData.append(sampleAt(10.0 * k, k % 2 == 0 ? 0.0 : 0.002));
    EXPECT_TRUE(f.sensor.hasSettled(false));
    EXPECT_DOUBLE_EQ(f.sensor.stableRangeLimit, 0.08);
    EXPECT_TRUE(f.sensor.hasSettled(true));
    EXPECT_DOUBLE_EQ(f.sensor.stableRangeLimit, 1.5 * 0.002);
    EXPECT_NEAR(f.sensor.stableDeviationLimit, 1.5 * 0.001, 1e-6);
    f.sensor.bufferedData.append(sampleAt(2010.0, 0.02));
    EXPECT_FALSE(f.sensor.hasSettled(true));
    EXPECT_DOUBLE_EQ(f.sensor.stableRangeLimit, 1.5 * 0.002);
    for (int k = 202; k <= 400; ++k)
        f.sensor.bufferedData.append(sampleAt(10.0 * k));
    EXPECT_TRUE(f.sensor.hasSettled(true));
    EXPECT_DOUBLE_EQ(f.sensor.stableRangeLimit, f.sensor.stableFloor);
    EXPECT_EQ(wideListText(f.sensor.recentMedian()), L"0.000000,0.000000,0.000000;");
    for (int k = 0; k < 4096; ++k)  // more than any sensor reports in a second
        f.sensor.bufferedData.append(sampleAt(4000.0));
    EXPECT_FALSE(f.sensor.hasSettled(true));
}

/// Step by step as the definition has it, over plain loops.
double slowStableTime(const std::vector<SensorSample>& samples, double time) {
    const auto range = [&samples](double from) {  // with the last sample before it
        std::vector<double> values(1, samples.front().values[0]);
        for (const SensorSample& sample : samples)
            if (sample.time <= from)
                values[0] = sample.values[0];
            else if (sample.time <= from + 1000.0)
                values.push_back(sample.values[0]);
        return values;
    };
    const auto spread = [](const std::vector<double>& v) {
        return *std::max_element(v.begin(), v.end()) - *std::min_element(v.begin(), v.end());
    };
    const std::vector<double> start = range(time);
    if (start.size() < 3)
        return 0.0;
    int k = 1;
    for (; samples.back().time > time + 100.0 * k; ++k) {
        const std::vector<double> next = range(time + 100.0 * k);
        if (spread(next) > 1.5 * spread(start) || standardDeviation(next) > 1.5 * standardDeviation(start))
            break;
    }
    return 100.0 * (k - 1);
}

TEST(InertialSensor, StableTimeAgreesWithAPlainWalkAlsoAcrossGaps) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> noise(-1.0, 1.0);
    for (int trial = 0; trial < 60; ++trial) {
        std::vector<SensorSample> samples;
        double time = 0.0;
        for (int k = 0; k < 500; ++k) {
            time += k % 150 == 149 ? 10.0 * static_cast<double>(random() % 900) : static_cast<double>(random() % 20);
            const double level = k > 380 ? 0.02 * (k - 380) : 0.0;
            samples.push_back(sampleAt(time, noise(random) + level));
        }
        Fixture f(SequenceKind::full);
        f.sensor.bufferedData = SampleBuffer(samples);
        const double from = 200.0 + 13.0 * trial;
        EXPECT_DOUBLE_EQ(f.sensor.stableTimeAfter(from), slowStableTime(samples, from)) << trial;
    }
    for (const double first : {0.0, 15.0}) {  // the second one is out of order
        Fixture f(SequenceKind::full);
        f.sensor.bufferedData.append(sampleAt(first));
        for (int k = 1; k <= 200; ++k)
            f.sensor.bufferedData.append(sampleAt(10.0 * k, k % 2));
        f.sensor.bufferedData.append(sampleAt(1e13, 0.0));  // a huge gap is skipped at once
        EXPECT_GT(f.sensor.stableTimeAfter(500.0), 9.9e12);
    }
}

TEST(InertialSensor, OnePositionMovesTheOffsetOrSaysWhy) {
    const std::string ok = "(nothing thrown)";
    const std::string failed = "Calibration failed for sensor Accelerometer. Reason: ";
    const std::string tooHigh = "Calculated offset is too high.\n";
    const std::string turned =
        "Calculated offset is too high. Check that axis mapping is correct. Note That per-model calibration is a prerequisite "
        "for running a Face Up calibration.\n";
    const std::string restless = "Data standard deviation is too high. Device should be motionless.\n";
    for (const auto& [gravity, shake, text] : std::vector<std::tuple<Vector, double, std::string>>{
             {{0.01, -0.02, 1.03}, 0.001, ok},
             {{0.0, 0.0, -1.0}, 0.001, failed + turned},
             {{0.4, 0.0, 1.0}, 0.001, failed + tooHigh},
             {{0.0, 0.0, 1.0}, 0.06, failed + restless},
             {{0.4, 0.0, 1.0}, 0.06, failed + tooHigh + restless},
             {{nan, 0.0, 1.0}, 0.001, failed + tooHigh},
             {{}, 0.0, "Accelerometer Calibration Error: No data was available"},
         }) {
        Fixture f(SequenceKind::minimal);
        for (int k = 0; k < 100 && gravity.size() != 0; ++k)
            f.sensor.dataRecieved(sampleAt(10.0 * k, gravity[0] + (k % 2 == 0 ? shake : -shake), gravity[1], gravity[2]));
        EXPECT_TRUE(f.sensor.bufferedData.empty());
        EXPECT_EQ(textOf<CalibrationException>([&sensor = f.sensor] { sensor.calibrate(); }), text);
        ASSERT_EQ(f.sensor.calibrationData.empty(), text != ok);
        if (text == ok) {
            EXPECT_NEAR(StaticRecord::offset(f.sensor.calibrationData, 2), 30000, 1);
            EXPECT_EQ(StaticRecord::mapping(f.sensor.calibrationData), 0x00010101U);
        }
    }
}

TEST(Gyroscope, TurnEndsBeyondTwoHundredDegreesInAnyDirection) {
    FakeRun run(SequenceKind::full);
    Gyroscope gyroscope(staticGyroscope);
    gyroscope.setSensorManager(run);
    EXPECT_FALSE(gyroscope.isRotationDone(0.0));
    for (int k = 0; k <= 150; ++k)
        gyroscope.dataRecieved(sampleAt(10.0 * k, 1.0, 1.0, 1.0));
    gyroscope.captureRestRate();
    int steps = 0;
    for (bool done = false; !done && steps < 1000; ++steps) {
        gyroscope.dataRecieved(sampleAt(1510.0 + 10.0 * steps, 61.0, 1.0, -79.0));  // 100 degrees per second
        done = gyroscope.isRotationDone(0.0);
    }
    EXPECT_NEAR(steps, 200, 1);
    EXPECT_EQ(norm(gyroscope.referenceValue), 0.0);
}

}  // namespace
}  // namespace tavoren
