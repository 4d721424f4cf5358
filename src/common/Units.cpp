#include "common/Units.h"

#include <algorithm>
#include <array>

#include "common/MathException.h"

namespace tavoren {

namespace {

constexpr double pi = 3.141592653589793;
constexpr double standardGravity = 9.80665;  // m/s2

enum class Family { none, acceleration, angle, magnetic };

using Conversion = double (*)(double);

double same(double x) {
    return x;
}

struct UnitRow {
    Unit unit;
    std::string_view name;
    Family family;
    Conversion toBase;
    Conversion fromBase;
};

// The base units are m/s2, radian (per second) and milligauss. Factors act one after the other, as
// written: folding them into one would change the last digit.
constexpr std::array unitTable{
    UnitRow{Unit::unknown, "unknown", Family::none, same, same},
    UnitRow{Unit::meterPerSec2, "meter__sec2", Family::acceleration, same, same},
    UnitRow{Unit::g0, "g0", Family::acceleration, [](double x) { return x * standardGravity; },
            [](double x) { return x / standardGravity; }},
    UnitRow{Unit::mg0, "mg0", Family::acceleration,
            [](double x) { return x * standardGravity / 1000.0; },
            [](double x) { return x * 1000.0 / standardGravity; }},
    UnitRow{Unit::microg0, "microg0", Family::acceleration,
            [](double x) { return x * standardGravity / 1000000.0; },
            [](double x) { return x * 1000000.0 / standardGravity; }},
    UnitRow{Unit::meterPerSec, "meter__sec", Family::none, same, same},
    UnitRow{Unit::radian, "radian", Family::angle, same, same},
    UnitRow{Unit::degree, "degree", Family::angle, [](double x) { return x * pi / 180.0; },
            [](double x) { return x * 180.0 / pi; }},
    UnitRow{Unit::radPerSec, "rad__sec", Family::angle, same, same},
    UnitRow{Unit::degPerSec, "deg__sec", Family::angle, [](double x) { return x * pi / 180.0; },
            [](double x) { return x * 180.0 / pi; }},
    UnitRow{Unit::mdegPerSec, "mdeg__sec", Family::angle,
            [](double x) { return x * pi / 180.0 / 1000.0; },
            [](double x) { return x * 180.0 / pi * 1000.0; }},
    UnitRow{Unit::degSec5, "deg_sec_5", Family::angle,
            [](double x) { return x * pi / 180.0 / 100000.0; },
            [](double x) { return x * 180.0 / pi * 100000.0; }},
    UnitRow{Unit::tesla, "tesla", Family::none, same, same},
    UnitRow{Unit::microTesla, "microTesla", Family::magnetic, [](double x) { return x * 10.0; },
            [](double x) { return x * 0.1; }},
    UnitRow{Unit::milliGauss, "milliGauss", Family::magnetic, same, same},
    UnitRow{Unit::microGauss, "microGauss", Family::magnetic, [](double x) { return x / 1000.0; },
            [](double x) { return x * 1000.0; }},
    UnitRow{Unit::lux, "lux", Family::none, same, same},
};

const UnitRow* findUnit(Unit unit) {
    const auto* const row = std::find_if(unitTable.begin(), unitTable.end(),
                                         [unit](const auto& r) { return r.unit == unit; });
    return row == unitTable.end() ? nullptr : row;
}

}  // namespace

std::string unitToString(Unit unit) {
    const UnitRow* const row = findUnit(unit);
    if (!row)
        throw MathException("Unsupported unit");
    return std::string(row->name);
}

Unit unitFromString(std::string_view name) {
    const auto* const row = std::find_if(unitTable.begin(), unitTable.end(),
                                         [name](const auto& r) { return r.name == name; });
    if (row == unitTable.end())
        throw MathException("Unsupported unit");
    return row->unit;
}

double convertUnit(double value, Unit source, Unit target) {
    const UnitRow* const from = findUnit(source);
    const UnitRow* const to = findUnit(target);
    if (!from || !to || from->family == Family::none || from->family != to->family)
        return 0.0;
    return to->fromBase(from->toBase(value));
}

}  // namespace tavoren
