#include "sensors/SecondSensorLayout.h"

#include "common/CalibrationException.h"
#include "sensors/Sensor.h"

namespace tavoren {

SecondSensorLayout secondSensorLayout(std::uint8_t formFactor, std::uint8_t hinge) {
    constexpr std::uint8_t lastHinge = 3;
    constexpr std::uint8_t firstSideHinge = 2;
    if (formFactor != Sensor::formFactor2in1 && formFactor != Sensor::formFactorMid)
        throw CalibrationException("Undefined form factor encountered.");
    if (hinge > lastHinge)
        throw CalibrationException("Undefined hinge configuration encountered.");
    if (formFactor == Sensor::formFactorMid)
        return hinge < firstSideHinge ? SecondSensorLayout::bottom : SecondSensorLayout::top;
    return static_cast<SecondSensorLayout>(hinge);
}

}  // namespace tavoren
