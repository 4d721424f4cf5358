#include "Recording.h"

#include <array>
#include <cmath>
#include <numbers>
#include <random>

#include "files/CsvParser.h"
#include "sensors/GenericSensor.h"

namespace tavoren::bench {

namespace {

using Axes = std::array<double, 3>;
using Turn = std::array<Axes, 3>;  // rows

constexpr double period = 0.01;      // seconds between samples
constexpr double turnSeconds = 6.0;  // for 360 degrees
constexpr double moveSeconds = 2.5;  // for 90 degrees

/// One stretch of the sequence: a rotation about an axis of the device, or a rest.
struct Segment {
    double seconds;
    std::size_t axis;
    double degrees;
};

std::vector<Segment> fullSequence(double restSeconds) {
    constexpr std::size_t x = 0, y = 1, z = 2;
    const Segment rest{restSeconds, z, 0.0};
    const auto turn = [](std::size_t axis) { return Segment{turnSeconds, axis, 360.0}; };
    const auto move = [](std::size_t axis) { return Segment{moveSeconds, axis, 90.0}; };
    return {rest,    turn(z), rest,    move(x), rest,    turn(y), rest,
            move(z), rest,    turn(x), rest,    move(z), rest};
}

/// The share of a rotation that is done at `part` of its time, and its speed: no jerk at the ends.
double progress(double part) {
    return part - std::sin(2.0 * std::numbers::pi * part) / (2.0 * std::numbers::pi);
}
double speed(double part) {
    return 1.0 - std::cos(2.0 * std::numbers::pi * part);
}

/// What the device's axes see of a direction of the world when the device has turned about one of
/// its axes.
Axes seenAfterTurn(const Axes& direction, std::size_t axis, double radians) {
    const std::size_t j = (axis + 1) % 3, k = (axis + 2) % 3;
    Axes seen = direction;
    seen[j] = std::cos(radians) * direction[j] + std::sin(radians) * direction[k];
    seen[k] = std::cos(radians) * direction[k] - std::sin(radians) * direction[j];
    return seen;
}

/// The faults of one part: raw = distortion x true + offset + noise.
class Imperfection {
  public:
    Imperfection(const Turn& distorting, const Axes& shift, double noiseDeviation, unsigned seed)
        : distortion(distorting), offset(shift), noise(0.0, noiseDeviation), random(seed) {}

    SampleValues apply(const Axes& truth) {
        SampleValues raw;
        for (std::size_t i = 0; i < truth.size(); ++i) {
            double value = offset[i] + noise(random);
            for (std::size_t k = 0; k < truth.size(); ++k)
                value += distortion[i][k] * truth[k];
            raw.push_back(value);
        }
        return raw;
    }

  private:
    Turn distortion;
    Axes offset;
    std::normal_distribution<double> noise;
    std::mt19937_64 random;
};

std::shared_ptr<Sensor> recordedSensor(const Luid& luid, const char* name, Unit unit) {
    auto sensor = std::make_shared<GenericSensor>(luid);
    sensor->name = name;
    sensor->category = Sensor::inertial;
    sensor->valueCount = 3;
    sensor->dataUnit = unit;
    return sensor;
}

}  // namespace

ScratchFolder::ScratchFolder()
    : path(std::filesystem::temp_directory_path() /
           ("tavoren_bench_" + std::to_string(std::random_device{}()))) {
    std::filesystem::create_directories(path);
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

Recording::Recording(double restSeconds) {
    Imperfection accelerometer(
        {{{0.01, 0.004, 1.02}, {-0.006, 0.99, 0.005}, {-1.01, 0.003, 0.008}}}, {0.015, -0.02, 0.01},
        0.001, 1);
    Imperfection gyroscope({{{0.006, -0.01, 0.99}, {0.004, 1.01, -0.007}, {-0.98, 0.01, 0.005}}},
                           {0.3, -0.4, 0.6}, 0.05, 2);
    Axes up{0.0, 0.0, 1.0};
    for (const Segment& segment : fullSequence(restSeconds)) {
        const double radians = segment.degrees * std::numbers::pi / 180.0;
        const auto count = static_cast<std::size_t>(std::lround(segment.seconds / period));
        for (std::size_t i = 0; i < count; ++i) {
            const double part = static_cast<double>(i) / static_cast<double>(count);
            const double time = 1000.0 * period * static_cast<double>(acceleration.size());
            Axes turning{};
            turning[segment.axis] = segment.degrees / segment.seconds * speed(part);
            acceleration.push_back({time, accelerometer.apply(seenAfterTurn(
                                              up, segment.axis, radians * progress(part)))});
            rate.push_back({time, gyroscope.apply(turning)});
        }
        up = seenAfterTurn(up, segment.axis, radians);
    }
}

double Recording::restForRows(std::size_t rows) {
    constexpr double moving = 3.0 * (turnSeconds + moveSeconds);
    return (static_cast<double>(rows) * period - moving) / 7.0;
}

std::shared_ptr<Sensor> recordedAccelerometer() {
    return recordedSensor({115, 0, 0, 0, 2}, "Accelerometer", Unit::g0);
}

std::shared_ptr<Sensor> recordedGyroscope() {
    return recordedSensor({118, 0, 0, 0, 2}, "Gyroscope", Unit::degPerSec);
}

std::size_t writeDumps(const Recording& recording, const ScratchFolder& folder) {
    const SensorDataMap data{{recordedAccelerometer(), SampleBuffer(recording.acceleration)},
                             {recordedGyroscope(), SampleBuffer(recording.rate)}};
    CsvParser().writeToFile(folder.file("dataDump.csv"), data, {});
    return recording.acceleration.size() + recording.rate.size();
}

}  // namespace tavoren::bench
