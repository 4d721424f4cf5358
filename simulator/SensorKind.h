#pragma once

#include <span>
#include <string>

#include "common/Luid.h"

namespace tavoren::simulator {

/// A sensor that a simulated device can carry.
struct SensorKind {
    /// What it measures.
    enum class Quantity { acceleration, rate, field, light, none };

    const char* letter = "";  ///< its name on the command line
    Luid luid;
    Quantity quantity = Quantity::none;
    const char* text = "";  ///< for the help

    bool isSecond() const { return luid.InstanceId != 0; }
    /// Whether the firmware corrects its readings by a stored record.
    bool isCorrected() const { return luid.hasStaticData(); }
};

/// All sensors, in the order in which the hub lists them.
std::span<const SensorKind> sensorKinds();

/// The kind of a letter in any case; throws `std::invalid_argument` for any other text.
const SensorKind& sensorKind(const std::string& letter);

}  // namespace tavoren::simulator
