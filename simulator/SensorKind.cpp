#include "simulator/SensorKind.h"

#include <array>
#include <stdexcept>

#include "common/Text.h"

namespace tavoren::simulator {

namespace {

using Quantity = SensorKind::Quantity;

constexpr std::uint8_t corrected = Luid::staticData;
constexpr std::uint8_t dynamic = Luid::dynamicData;

constexpr std::array kinds{
    SensorKind{"A", {115, 0, 0, 0, corrected}, Quantity::acceleration, "accelerometer"},
    SensorKind{"G", {118, 0, 0, 0, corrected}, Quantity::rate, "gyroscope"},
    SensorKind{"M", {527, 0, 0, 0, corrected}, Quantity::field, "magnetometer"},
    SensorKind{"L", {65, 0, 0, 0, corrected}, Quantity::light, "ambient light sensor"},
    SensorKind{"A2", {115, 0, 0, 1, corrected}, Quantity::acceleration, "accelerometer in the lid"},
    SensorKind{"G2", {118, 0, 0, 1, corrected}, Quantity::rate, "gyroscope in the lid"},
    SensorKind{"M2", {527, 0, 0, 1, corrected}, Quantity::field, "magnetometer in the lid"},
    SensorKind{"L2", {65, 0, 0, 1, corrected}, Quantity::light, "ambient light sensor in the lid"},
    SensorKind{"AD", {115, 0, 0, 0, dynamic}, Quantity::acceleration, "accelerometer, dynamic"},
    SensorKind{"GD", {118, 0, 0, 0, dynamic}, Quantity::rate, "gyroscope, dynamic"},
    SensorKind{"MD", {527, 0, 0, 0, dynamic}, Quantity::field, "magnetometer, dynamic"},
    SensorKind{"A0", {115, 0, 0, 0, 0}, Quantity::acceleration, "accelerometer without a record"},
    SensorKind{"X", {225, 0, 0, 0, corrected}, Quantity::none, "a sensor of another kind"},
};

}  // namespace

std::span<const SensorKind> sensorKinds() {
    return kinds;
}

const SensorKind& sensorKind(const std::string& letter) {
    for (const SensorKind& kind : kinds)
        if (equalsIgnoringCase(kind.letter, letter))
            return kind;
    throw std::invalid_argument("unknown sensor \"" + letter + "\"");
}

}  // namespace tavoren::simulator
