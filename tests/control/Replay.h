#pragma once

#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "control/NewMotionProcess.h"
#include "control/SensorManager.h"
#include "files/CsvParser.h"
#include "files/TemporaryFolder.h"
#include "sensors/createSensor.h"
#include "sensors/MagneticField.h"
#include "sensors/Sensor.h"

namespace tavoren {

/// A sensor as it is: raw = inverse(scale x mapping) x device + offset, with Gaussian noise.
struct TrueSensor {
    Matrix scale = identity(3);
    Matrix mapping = identity(3);
    Vector offset = Vector(3);
    double noise = 0.0;
    Matrix body = identity(3);  ///< takes the axes of the device to those of the sensor's body

    Vector raw(const Vector& device, std::mt19937& random) const {
        std::normal_distribution<double> spread;
        Vector value = inverse3(scale * mapping) * (body * device) + offset;
        for (double& element : value)
            element += noise * spread(random);
        return value;
    }
};

/// A device that is turned about its own axes while two sensors record it at 100 Hz. Turns are
/// exact within one step, so that gravity and rate always tell the same movement.
class MovedDevice {
  public:
    MovedDevice(TrueSensor accelerometer, TrueSensor gyroscope)
        : trueAccelerometer(std::move(accelerometer)), trueGyroscope(std::move(gyroscope)) {}

    void rest(double seconds) { move(0, 0.0, seconds); }

    /// Degrees about an axis of the device, counterclockwise as seen against the axis.
    void turn(int axis, double degrees, double seconds = 4.0) { move(axis, degrees, seconds); }

    /// The positions and turns of the full sequence: Z up, Y up, X up, Y down.
    void fullSequence(double restSeconds, double changeSeconds = 4.0) {
        for (const auto& [axisUp, axisOfChange] : {std::pair{2, 0}, {1, 2}, {0, 2}}) {
            rest(restSeconds);
            turn(axisUp, 360.0);
            rest(restSeconds);
            turn(axisOfChange, 90.0, changeSeconds);
        }
        rest(restSeconds);
    }

    void fourSteps(double restSeconds, int firstAxis = 1) {
        rest(restSeconds);
        for (const auto& [axis, degrees] : {std::pair{firstAxis, 90.0}, {2, 90.0}, {0, -90.0}}) {
            turn(axis, degrees, 2.0);
            rest(restSeconds);
        }
    }

    std::vector<SensorSample> acceleration;
    std::vector<SensorSample> rate;

  private:
    static constexpr double pi = 3.141592653589793;

    // A hand begins and ends slowly; an even rate would pass for rest.
    void move(int axis, double degrees, double seconds) {
        const int steps = static_cast<int>(std::lround(seconds * 100.0));
        for (int k = 0; k < steps; ++k, time += 10.0) {
            Vector now(3);
            now[axis] = degrees / seconds * (1.0 - std::cos(2.0 * pi * (k + 0.5) / steps));
            gravity = afterTurn(gravity, axis, now[axis] * 0.01);
            record(acceleration, trueAccelerometer.raw(gravity, random));
            record(rate, trueGyroscope.raw(now, random));
        }
    }

    void record(std::vector<SensorSample>& samples, const Vector& value) const { samples.push_back({time, valuesOf(value)}); }

    TrueSensor trueAccelerometer;
    TrueSensor trueGyroscope;
    Vector gravity{0.0, 0.0, 1.0};
    double time = 0.0;
    std::mt19937 random{11};
};

/// Sensors, sequence and manager of a replay, and the dumps that it plays.
class Replay {
  public:
    explicit Replay(SequenceKind kind, RunMode mode = RunMode::calibrate) : process(std::make_shared<NewMotionProcess>(kind)) {
        process->type = mode;
    }

    std::shared_ptr<Sensor> add(const Luid& luid, const std::vector<SensorSample>& samples) {
        sensors.push_back(createSensor(luid));
        dumps[sensors.back()] = SampleBuffer(samples);
        return sensors.back();
    }

    void load() {
        CsvParser().writeToFile(folder / "dataDump.csv", dumps, sensors);
        manager.setSensors(sensors);
        manager.setProcess(process);
        manager.loadDump(folder.path.string(), "dataDump", false);
    }

    void play() {
        load();
        manager.playData();
    }

    std::shared_ptr<NewMotionProcess> process;
    SensorManager manager;
    std::vector<std::shared_ptr<Sensor>> sensors;

  private:
    TemporaryFolder folder;
    SensorDataMap dumps;
};

}  // namespace tavoren
