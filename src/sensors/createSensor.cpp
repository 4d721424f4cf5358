#include "sensors/createSensor.h"

#include <algorithm>
#include <array>

#include "sensors/Accelerometer.h"
#include "sensors/AmbientLight.h"
#include "sensors/GenericSensor.h"
#include "sensors/Gyroscope.h"
#include "sensors/Magnetometer.h"

namespace tavoren {

namespace {

template <typename Class>
std::shared_ptr<Sensor> make(const Luid& luid) {
    return std::make_shared<Class>(luid);
}

struct ClassRow {
    std::uint16_t firstType;
    std::uint16_t lastType;
    std::shared_ptr<Sensor> (*create)(const Luid&);
};

constexpr std::array classTable{
    ClassRow{115, 115, make<Accelerometer>},  ClassRow{118, 118, make<Gyroscope>},
    ClassRow{125, 125, make<Magnetometer>},   ClassRow{527, 527, make<Magnetometer>},
    ClassRow{113, 114, make<InertialSensor>}, ClassRow{116, 117, make<InertialSensor>},
    ClassRow{119, 124, make<InertialSensor>}, ClassRow{126, 126, make<InertialSensor>},
    ClassRow{129, 141, make<InertialSensor>}, ClassRow{577, 578, make<InertialSensor>},
    ClassRow{591, 591, make<InertialSensor>}, ClassRow{65, 65, make<AmbientLight>},
};

}  // namespace

std::shared_ptr<Sensor> createSensor(const Luid& luid) {
    const auto* const row =
        std::find_if(classTable.begin(), classTable.end(), [&luid](const ClassRow& r) {
            return luid.SensorTypeId >= r.firstType && luid.SensorTypeId <= r.lastType;
        });
    return row == classTable.end() ? make<GenericSensor>(luid) : row->create(luid);
}

}  // namespace tavoren
