#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tavoren {

/// Unit codes as the firmware numbers them. Codes 6 to 9 are not in use.
enum class Unit : std::uint32_t {
    unknown = 0,
    meterPerSec2 = 1,
    g0 = 2,
    mg0 = 3,
    microg0 = 4,
    meterPerSec = 5,
    radian = 10,
    degree = 11,
    radPerSec = 12,
    degPerSec = 13,
    mdegPerSec = 14,
    degSec5 = 15,  ///< 1e-5 degrees per second
    tesla = 16,
    microTesla = 17,
    milliGauss = 18,
    microGauss = 19,
    lux = 20,
};

/// The name of a unit; throws `MathException` for a code without one.
std::string unitToString(Unit unit);
/// The unit of a name, case-sensitive; throws `MathException` for any other text.
Unit unitFromString(std::string_view name);

/// A value taken from one unit to another of the same family; 0.0 between families. Angles and
/// rates are one family.
double convertUnit(double value, Unit source, Unit target);

}  // namespace tavoren
