#pragma once

#include <map>
#include <memory>

#include "common/SampleBuffer.h"

namespace tavoren {

class Sensor;

/// The samples of each sensor, in order of arrival. The map's own order is that of the handles and
/// changes from run to run: whoever writes it out goes by a list of sensors.
using SensorDataMap = std::map<std::shared_ptr<Sensor>, SampleBuffer>;

}  // namespace tavoren
