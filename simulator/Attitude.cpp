#include "simulator/Attitude.h"

#include <array>
#include <cmath>
#include <numbers>

namespace tavoren::simulator {

namespace {

struct UnitCircle {
    double cosine;
    double sine;
};

/// Exact at whole quarter turns, so that a position after many turns is still exact.
UnitCircle onCircle(double degrees) {
    const double quarters = degrees / 90.0;
    if (quarters == std::round(quarters)) {
        constexpr std::array cosines{1.0, 0.0, -1.0, 0.0};
        const auto k = static_cast<unsigned>(static_cast<long>(quarters)) % 4U;
        return {cosines[k], cosines[(k + 3U) % 4U]};
    }
    const double radians = degrees * std::numbers::pi / 180.0;
    return {std::cos(radians), std::sin(radians)};
}

}  // namespace

Attitude Attitude::turned(int axis, double degrees) const {
    const UnitCircle at = onCircle(degrees);
    const int next = (axis + 1) % 3, last = (axis + 2) % 3;
    const Vector a = row(axes, next), b = row(axes, last);
    Attitude after = *this;
    after.axes.setRow(next, a * at.cosine + b * at.sine);
    after.axes.setRow(last, b * at.cosine - a * at.sine);
    return after;
}

}  // namespace tavoren::simulator
