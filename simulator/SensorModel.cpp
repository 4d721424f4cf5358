#include "simulator/SensorModel.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "sensors/createSensor.h"

namespace tavoren::simulator {

namespace {

std::int32_t onGrid(double value) {
    constexpr double low = std::numeric_limits<std::int32_t>::min();
    constexpr double high = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp(std::round(value), low, high));
}

/// What a perfect sensor at this place of the device would show.
Vector physical(SensorKind::Quantity quantity, const Moment& moment, const World& world) {
    switch (quantity) {
        case SensorKind::Quantity::acceleration:
            return moment.attitude.seen(World::gravity());
        case SensorKind::Quantity::rate:
            return moment.rate;
        case SensorKind::Quantity::field:
            return moment.attitude.seen(world.fieldAt(moment.place));
        case SensorKind::Quantity::light:
            return {moment.lux, 0.0, 0.0};
        case SensorKind::Quantity::none:
            break;
    }
    return Vector(3);
}

}  // namespace

SensorModel::SensorModel(const SensorKind& kindOfSensor, TrueSensor built, unsigned noiseSeed)
    : sensorKind(&kindOfSensor),
      trueSensor(std::move(built)),
      described(createSensor(kindOfSensor.luid)),
      random(noiseSeed) {}

double SensorModel::noise() {
    return trueSensor.noise > 0.0 ? trueSensor.noise * spread(random) : 0.0;
}

Vector SensorModel::rawReading(const Moment& moment, const World& world) {
    const Vector truth = physical(sensorKind->quantity, moment, world);
    if (sensorKind->quantity == SensorKind::Quantity::light)
        return {truth[0] / trueSensor.scale(0, 0) + noise(), 0.0, 0.0};
    Vector raw = trueSensor.raw(truth);
    for (double& element : raw)
        element += noise();
    return raw;
}

std::vector<std::int32_t> SensorModel::publish(const Moment& moment, const World& world) {
    const Vector value = correction.apply(rawReading(moment, world));
    std::vector<std::int32_t> numbers(described->valueCount);
    for (std::size_t i = 0; i < numbers.size(); ++i)
        numbers[i] = onGrid(value[static_cast<int>(i)] * described->rawDivisor);
    return numbers;
}

SampleValues SensorModel::reading(const Moment& moment, const World& world) {
    SampleValues values;
    for (const std::int32_t number : publish(moment, world))
        values.push_back(static_cast<double>(number) / static_cast<double>(described->rawDivisor));
    return values;
}

}  // namespace tavoren::simulator
