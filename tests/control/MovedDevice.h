#pragma once

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "common/SensorSample.h"
#include "numerics/Matrix.h"

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

    void rest(double seconds) { move(Vector(3), seconds); }

    /// Degrees about an axis of the device, counterclockwise as seen against the axis.
    void turn(int axis, double degrees, double seconds = 4.0) {
        Vector turning(3);
        turning[axis] = degrees / seconds;
        move(turning, seconds);
    }

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
        turn(firstAxis, 90.0, 2.0);
        rest(restSeconds);
        turn(2, 90.0, 2.0);
        rest(restSeconds);
        turn(0, -90.0, 2.0);
        rest(restSeconds);
    }

    std::vector<SensorSample> acceleration;
    std::vector<SensorSample> rate;

  private:
    static constexpr double pi = 3.141592653589793;

    // A hand begins and ends slowly; an even rate would pass for rest.
    void move(const Vector& meanRate, double seconds) {
        const int steps = static_cast<int>(std::lround(seconds * 100.0));
        for (int k = 0; k < steps; ++k) {
            const Vector now = meanRate * (1.0 - std::cos(2.0 * pi * (k + 0.5) / steps));
            turnGravity(now * 0.01);
            record(acceleration, trueAccelerometer.raw(gravity, random));
            record(rate, trueGyroscope.raw(now, random));
            time += 10.0;
        }
    }

    /// Gravity turns the other way, seen from the device (Rodrigues).
    void turnGravity(const Vector& degrees) {
        const double angle = norm(degrees) * pi / 180.0;
        if (angle == 0.0)
            return;
        const Vector axis = degrees / norm(degrees);
        gravity = gravity * std::cos(angle) + vector3CrossProduct(gravity, axis) * std::sin(angle) +
                  axis * (dot(axis, gravity) * (1.0 - std::cos(angle)));
    }

    void record(std::vector<SensorSample>& samples, const Vector& value) const {
        samples.push_back({time, {value[0], value[1], value[2]}});
    }

    TrueSensor trueAccelerometer;
    TrueSensor trueGyroscope;
    Vector gravity{0.0, 0.0, 1.0};
    double time = 0.0;
    std::mt19937 random{11};
};

}  // namespace tavoren
