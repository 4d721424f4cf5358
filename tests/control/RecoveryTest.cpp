// Recordings of sensors whose errors are known: what the calibration finds must be those errors.

#include <gtest/gtest.h>

#include "control/MovedDevice.h"
#include "control/Replay.h"
#include "sensors/Accelerometer.h"
#include "sensors/Gyroscope.h"
#include "sensors/MagneticField.h"

namespace tavoren {
namespace {

constexpr double accelerometerNoise = 0.0008;  // g0
constexpr double gyroscopeNoise = 0.03;        // degrees per second

class Recovery : public testing::TestWithParam<Place> {
  protected:
    static TrueSensor sensorWith(double noise, const Vector& offset, const Matrix& scale) {
        return {scale, Matrix(3, 3, {0, 0, -1, 0, 1, 0, 1, 0, 0}), offset, noise, GetParam().body};
    }
    static std::shared_ptr<Sensor> add(Replay& replay, std::uint16_t type, const std::vector<SensorSample>& samples) {
        auto sensor = replay.add({type, 0, 0, GetParam().instance, Luid::staticData}, samples);
        GetParam().apply(*sensor);
        return sensor;
    }
    static void expectNear(const Matrix& found, const Matrix& truth, double bound) {
        EXPECT_LE(std::abs(maxMagnitudeEntry(found - truth)), bound) << logText(found);
    }
    static InertialSensor& inertial(const std::shared_ptr<Sensor>& sensor) { return dynamic_cast<InertialSensor&>(*sensor); }
};

// A median of n samples is good to about 1.25 noise / sqrt(n); a rest holds at least 100 of them.
// Six deviations of the worst combination stay below these bounds.
constexpr double accelerometerBound = 6 * 3 * 1.25 * accelerometerNoise / 10.0;
constexpr double gyroscopeBound = 6 * 1.25 * gyroscopeNoise / 10.0;

TEST_P(Recovery, FullSequenceFindsOffsetScaleAndMapping) {
    const Matrix scale(3, 3, {0.98, -0.01, 0.005, 0.012, 1.03, -0.004, 0.0, 0.015, 1.01});
    const TrueSensor acc = sensorWith(accelerometerNoise, {0.05, -0.08, 0.03}, scale);
    const TrueSensor gyr = sensorWith(gyroscopeNoise, {0.7, -1.1, 0.4}, scale);
    MovedDevice device(acc, gyr);
    device.fullSequence(4.0);
    Replay replay(SequenceKind::full);
    const auto accelerometer = add(replay, 115, device.acceleration);
    const auto gyroscope = add(replay, 118, device.rate);
    replay.play();
    ASSERT_EQ(replay.process->stageIndex, 7);
    accelerometer->calibrate();
    gyroscope->calibrate();
    for (const auto& [sensor, bound] : {std::pair{accelerometer, accelerometerBound}, std::pair{gyroscope, gyroscopeBound}}) {
        const TrueSensor& truth = sensor == accelerometer ? acc : gyr;
        EXPECT_LE(maxAbs(inertial(sensor).offset - truth.offset), bound);
        EXPECT_EQ(wideListText(inertial(sensor).axisMapping), wideListText(truth.mapping));
        // A turn of 360 degrees holds 400 samples: the same bound for its scale.
        expectNear(inertial(sensor).scaleMatrix, truth.scale, bound);
        EXPECT_EQ(sensor->calibrationData.size(), 40U);
    }
    // Turned by the gyroscope, the accelerometer's positions agree with what it measured.
    const std::vector<double>& times = replay.process->segmentTimes;
    EXPECT_LT(inertial(accelerometer).compareRotation(times[3], times[4], inertial(gyroscope), 0, identity(3)), 0.05);
}

TEST_P(Recovery, FourStepsFindMappingOffsetAndDiagonalScale) {
    const Matrix scale(3, 3, {0.97, 0.0, 0.0, 0.0, 1.04, 0.0, 0.0, 0.0, 1.01});
    const TrueSensor acc = sensorWith(accelerometerNoise, {0.01, 0.0, -0.01}, scale);
    const TrueSensor gyr = sensorWith(gyroscopeNoise, {0.7, -1.1, 0.4}, scale);
    MovedDevice device(acc, gyr);
    device.fourSteps(4.0);
    Replay replay(SequenceKind::fourSteps);
    const auto accelerometer = add(replay, 115, device.acceleration);
    const auto gyroscope = add(replay, 118, device.rate);
    replay.play();
    accelerometer->calibrate();
    gyroscope->calibrate();
    EXPECT_LE(maxAbs(inertial(gyroscope).offset - gyr.offset), gyroscopeBound);
    // The readings of the last position are those of the first: an axis without gravity is free of
    // it, so the offset is that of the sensor.
    EXPECT_LE(maxAbs(inertial(accelerometer).offset - acc.offset), accelerometerBound);
    expectNear(inertial(accelerometer).scaleMatrix, scale, accelerometerBound);
    EXPECT_EQ(wideListText(inertial(accelerometer).axisMapping), wideListText(acc.mapping));
    EXPECT_EQ(wideListText(inertial(gyroscope).axisMapping), wideListText(gyr.mapping));
    // The singular values of a gyroscope come in ascending order, without their rotation.
    expectNear(inertial(gyroscope).scaleMatrix, Matrix(3, 3, {0.97, 0.0, 0.0, 0.0, 1.01, 0.0, 0.0, 0.0, 1.04}), 0.002);
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
        if (wrong)
            continue;
        const Matrix turned = dynamic_cast<Gyroscope&>(*gyroscope).rotationMatrices.at(0);
        EXPECT_LT(maxAbs(Vector{0.0, 0.0, 1.0} * turned - Vector{-1.0, 0.0, 0.0}), 0.02);
    }
}

}  // namespace
}  // namespace tavoren
