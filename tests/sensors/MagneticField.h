#pragma once

#include <cmath>

#include "numerics/Matrix.h"
#include "sensors/FakeRun.h"
#include "sensors/Magnetometer.h"

namespace tavoren {

constexpr Luid staticMagnetometer{527, 0, 0, 0, Luid::staticData};

constexpr double radiansPerDegree = 3.141592653589793 / 180.0;

/// The field (mG) as a device sees it that lies face up and points north.
inline Vector northernField(double size, double dipDegrees) {
    return {0.0, size * std::cos(dipDegrees * radiansPerDegree), -size * std::sin(dipDegrees * radiansPerDegree)};
}

/// A vector of the world in device axes, after the device was turned counterclockwise about one of
/// its own axes.
inline Vector afterTurn(const Vector& v, int axis, double degrees) {
    const double c = std::cos(degrees * radiansPerDegree);
    const double s = std::sin(degrees * radiansPerDegree);
    Vector along(3);
    along[axis] = 1.0;
    return v * c + vector3CrossProduct(v, along) * s + along * (v[axis] * (1.0 - c));
}

inline SampleValues valuesOf(const Vector& v) {
    return {v[0], v[1], v[2]};
}

/// A sensor of the device; `body` takes the axes of the device to those of the sensor's body.
struct Place {
    std::uint8_t instance;
    std::uint8_t formFactor;
    std::uint8_t hinge;
    Matrix body;

    void apply(Sensor& sensor) const {
        sensor.luid.InstanceId = instance;
        sensor.formFactor = formFactor;
        sensor.hinge = hinge;
    }
};

inline const std::vector<Place> places{
    {0, 1, 0, identity(3)},
    {1, 0, 0, Matrix(3, 3, {1, 0, 0, 0, -1, 0, 0, 0, -1})},
    {1, 0, 1, Matrix(3, 3, {-1, 0, 0, 0, 1, 0, 0, 0, -1})},
    {1, 0, 2, Matrix(3, 3, {0, -1, 0, -1, 0, 0, 0, 0, -1})},
    {1, 0, 3, Matrix(3, 3, {0, 1, 0, 1, 0, 0, 0, 0, -1})},
    {1, 5, 0, Matrix(3, 3, {1, 0, 0, 0, -1, 0, 0, 0, -1})},
    {1, 5, 1, Matrix(3, 3, {1, 0, 0, 0, -1, 0, 0, 0, -1})},
    {1, 5, 2, Matrix(3, 3, {-1, 0, 0, 0, 1, 0, 0, 0, -1})},
    {1, 5, 3, Matrix(3, 3, {-1, 0, 0, 0, 1, 0, 0, 0, -1})},
};

}  // namespace tavoren
