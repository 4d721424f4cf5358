#pragma once

#include <random>

#include "numerics/Matrix.h"
#include "simulator/SensorKind.h"

namespace tavoren::simulator {

/// A sensor as it was built: raw = inverse(scale x mapping) x body x device + offset + noise, in
/// the unit of its data. A light sensor has only its scale, and divides by it.
struct TrueSensor {
    Matrix scale = identity(3);
    Matrix mapping = identity(3);
    Vector offset = Vector(3);
    double noise = 0.0;         ///< standard deviation of one reading
    Matrix body = identity(3);  ///< takes the device's axes to those of the sensor's part of it

    /// A reading without noise.
    Vector raw(const Vector& device) const;
};

/// How a device's errors are drawn.
enum class Errors {
    none,      ///< perfect sensors: no offset, identity for scale and mapping
    offset,    ///< nothing but an offset, as a calibration in one position can find it
    diagonal,  ///< no coupling between axes, as a four-step calibration can find it
    full,
};

/// Draws a sensor; the same random numbers give the same sensor. `noiseFactor` scales the usual
/// noise of the kind.
TrueSensor drawSensor(const SensorKind& kind, Errors errors, double noiseFactor,
                      std::mt19937& random);

/// From the device's axes to those of a lid; the identity for numbers outside the table.
Matrix lidAxes(std::uint8_t formFactor, std::uint8_t hinge);

}  // namespace tavoren::simulator
