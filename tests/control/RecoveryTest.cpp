// Recordings of sensors whose errors are known: what the calibration finds must be those errors.

#include <gtest/gtest.h>

#include "control/Replay.h"

namespace tavoren {
namespace {

constexpr double accelerometerNoise = 0.0008;  // g0
constexpr double gyroscopeNoise = 0.03;        // degrees per second

// A median of n samples is good to about 1.25 noise / sqrt(n); a rest holds at least 100 of them.
// Six deviations of the worst combination stay below these bounds.
constexpr double accelerometerBound = 6 * 3 * 1.25 * accelerometerNoise / 10.0;
constexpr double gyroscopeBound = 6 * 1.25 * gyroscopeNoise / 10.0;

/// Two sensors with errors, calibrated from a recording of a sequence.
class Recovery : public testing::TestWithParam<Place> {
  protected:
    void calibrate(SequenceKind kind, const Matrix& scale, const Vector& offset) {
        const Matrix mapping(3, 3, {0, 0, -1, 0, 1, 0, 1, 0, 0});
        acc = {scale, mapping, offset, accelerometerNoise, GetParam().body};
        gyr = {scale, mapping, {0.7, -1.1, 0.4}, gyroscopeNoise, GetParam().body};
        MovedDevice device(acc, gyr);
        kind == SequenceKind::full ? device.fullSequence(4.0) : device.fourSteps(4.0);
        replay.process = std::make_shared<NewMotionProcess>(kind);
        replay.process->type = RunMode::calibrate;
        accelerometer = add(115, device.acceleration);
        gyroscope = add(118, device.rate);
        replay.play();
        accelerometer->calibrate();
        gyroscope->calibrate();
        EXPECT_LE(maxAbs(accelerometer->offset - acc.offset), accelerometerBound);
        EXPECT_LE(maxAbs(gyroscope->offset - gyr.offset), gyroscopeBound);
        for (const auto& sensor : {accelerometer, gyroscope})
            EXPECT_EQ(wideListText(sensor->axisMapping), wideListText(mapping));
    }
    std::shared_ptr<InertialSensor> add(std::uint16_t type, const std::vector<SensorSample>& samples) {
        const auto sensor = replay.add({type, 0, 0, GetParam().instance, Luid::staticData}, samples);
        GetParam().apply(*sensor);
        return std::dynamic_pointer_cast<InertialSensor>(sensor);
    }
    static void expectNear(const Matrix& found, const Matrix& truth, double bound) {
        EXPECT_LE(std::abs(maxMagnitudeEntry(found - truth)), bound) << logText(found);
    }

    Replay replay{SequenceKind::full};
    TrueSensor acc, gyr;
    std::shared_ptr<InertialSensor> accelerometer, gyroscope;
};

TEST_P(Recovery, FullSequenceFindsOffsetScaleAndMapping) {
    const Matrix scale(3, 3, {0.98, -0.01, 0.005, 0.012, 1.03, -0.004, 0.0, 0.015, 1.01});
    calibrate(SequenceKind::full, scale, {0.05, -0.08, 0.03});
    EXPECT_EQ(replay.process->stageIndex, 7);
    // A turn of 360 degrees holds 400 samples: the same bound for its scale.
    expectNear(accelerometer->scaleMatrix, scale, accelerometerBound);
    expectNear(gyroscope->scaleMatrix, scale, gyroscopeBound);
    EXPECT_EQ(accelerometer->calibrationData.size() + gyroscope->calibrationData.size(), 80U);
    // Turned by the gyroscope, the accelerometer's positions agree with what it measured.
    const std::vector<double>& times = replay.process->segmentTimes;
    EXPECT_LT(accelerometer->compareRotation(times[3], times[4], *gyroscope, 0, identity(3)), 0.05);
}

TEST_P(Recovery, FourStepsFindMappingOffsetAndDiagonalScale) {
    // The readings of the last position are those of the first: an axis without gravity is free of
    // it, so the offset is that of the sensor.
    const Matrix scale(3, 3, {0.97, 0.0, 0.0, 0.0, 1.04, 0.0, 0.0, 0.0, 1.01});
    calibrate(SequenceKind::fourSteps, scale, {0.01, 0.0, -0.01});
    expectNear(accelerometer->scaleMatrix, scale, accelerometerBound);
    // The singular values of a gyroscope come in ascending order, without their rotation.
    expectNear(gyroscope->scaleMatrix, Matrix(3, 3, {0.97, 0.0, 0.0, 0.0, 1.01, 0.0, 0.0, 0.0, 1.04}), 0.002);
}

INSTANTIATE_TEST_SUITE_P(Places, Recovery, testing::ValuesIn(places));

TEST(Recovery, TestRunPassesAGoodDeviceAndNamesAWrongMovement) {
    for (const bool wrong : {false, true}) {
        MovedDevice device({.noise = accelerometerNoise}, {.noise = gyroscopeNoise});
        device.fourSteps(4.0, wrong ? 0 : 1);
        Replay replay(SequenceKind::fourSteps, RunMode::test);
        const auto accelerometer = replay.add(staticAccelerometer, device.acceleration);
        const auto gyroscope = replay.add(staticGyroscope, device.rate);
        replay.play();
        testing::internal::CaptureStdout();
        EXPECT_EQ(accelerometer->testCalibration(), !wrong);
        EXPECT_EQ(gyroscope->testCalibration(), !wrong);
        const std::string shown = testing::internal::GetCapturedStdout();
        EXPECT_EQ(shown.find("Error in motion Gyroscope step 0 gyro rotation test") != std::string::npos, wrong);
        EXPECT_EQ(replay.manager.failureReport(), wrong ? "3\tGeneral: Check Movement or Axis Mapping\n" : "");
    }
}

}  // namespace
}  // namespace tavoren
