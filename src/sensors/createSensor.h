#pragma once

#include <memory>

#include "common/Luid.h"

namespace tavoren {

class Sensor;

/// A sensor of the class that belongs to the LUID's `SensorTypeId`.
std::shared_ptr<Sensor> createSensor(const Luid& luid);

}  // namespace tavoren
