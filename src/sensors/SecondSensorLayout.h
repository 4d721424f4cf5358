#pragma once

#include <cstdint>

namespace tavoren {

/// How the second sensor of a type, in the other body of the device, lies against the first one.
/// The numbers are those of the four hinge positions of a 2IN1.
enum class SecondSensorLayout : std::uint8_t { bottom = 0, top = 1, left = 2, right = 3 };

/// The layout of a second sensor; throws `CalibrationException` for a form factor without a second
/// body and for a hinge outside the table.
SecondSensorLayout secondSensorLayout(std::uint8_t formFactor, std::uint8_t hinge);

}  // namespace tavoren
