#include "numerics/LookUp.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "common/MathException.h"

namespace tavoren {

namespace {

constexpr double twoPi = 6.283185307179586;
constexpr double pi = 3.141592653589793;
constexpr double halfPi = 1.5707963267948966;
constexpr double threeHalvesPi = 4.71238898038469;
constexpr double farthestAngle = 1e9;  // no movement turns farther
constexpr double manyTurns = 1e4;      // the reduction subtracts one turn at a time below

double sixDecimals(double x) {
    return std::round(x * 1e6) / 1e6;
}

template <std::size_t size, typename Function>
std::array<double, size> makeTable(Function function) {
    std::array<double, size> table{};
    for (std::size_t i = 0; i < size; ++i)
        table[i] = sixDecimals(function(static_cast<double>(i) * 1e-4));
    return table;
}

const std::array<double, 15708>& sineTable() {
    static const auto table = makeTable<15708>([](double angle) { return std::sin(angle); });
    return table;
}

// Over cosines from -1 on; the last step may exceed 1 by rounding.
const std::array<double, 20001>& arcCosineTable() {
    static const auto table =
        makeTable<20001>([](double step) { return std::acos(std::fmin(step - 1.0, 1.0)); });
    return table;
}

[[noreturn]] void refuseAngle() {
    throw MathException("Index of the sin_lut is out of range!");
}

double reducedToOneTurn(double x) {
    if (!(std::abs(x) <= farthestAngle))
        refuseAngle();
    if (std::abs(x) > manyTurns)
        x = std::fmod(x, twoPi);
    while (x < 0.0)
        x += twoPi;
    while (x > twoPi)
        x -= twoPi;
    return x;
}

double tableSine(double x) {
    const auto index = static_cast<std::int32_t>(x * 10000.0);
    const auto& table = sineTable();
    if (index < 0 || static_cast<std::size_t>(index) >= table.size())
        refuseAngle();
    return table[static_cast<std::size_t>(index)];
}

}  // namespace

double sin_lut(double x) {
    x = reducedToOneTurn(x);
    if (x <= halfPi)
        return tableSine(x);
    if (x <= pi)
        return tableSine(pi - x);
    if (x <= threeHalvesPi)
        return -tableSine(x - pi);
    return -tableSine(twoPi - x);
}

double acos_lut(double x) {
    if (!(x >= -1.0 && x <= 1.0))
        throw MathException("The input value of acos_lut is out of range!");
    return arcCosineTable()[static_cast<std::size_t>((x + 1.0) * 10000.0)];
}

}  // namespace tavoren
