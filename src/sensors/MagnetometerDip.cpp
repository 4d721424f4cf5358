#include <array>
#include <cstdlib>

#include "numerics/LookUp.h"
#include "sensors/Magnetometer.h"
#include "sensors/SecondSensorLayout.h"

namespace tavoren {

namespace {

// What stands in an element of a field vector: the cosine or the sine of the dip angle, or nothing.
constexpr int c = 1;
constexpr int n = 2;

using FieldParts = std::array<int, 3>;
using Positions = std::array<FieldParts, 4>;

constexpr Positions primaryField{{{0, c, -n}, {0, -n, -c}, {-n, 0, -c}, {0, n, -c}}};

// By `SecondSensorLayout`.
constexpr std::array<Positions, 4> secondField{{
    {{{0, -c, n}, {0, n, c}, {-n, 0, c}, {0, -n, c}}},
    {{{0, c, n}, {0, -n, c}, {n, 0, c}, {0, n, c}}},
    {{{-c, 0, n}, {n, 0, c}, {0, n, c}, {-n, 0, c}}},
    {{{c, 0, n}, {-n, 0, c}, {0, -n, c}, {n, 0, c}}},
}};

}  // namespace

void Magnetometer::buildExpectedValues(double dip, double size) {
    cosDip = cosineOf(dip);
    sinDip = sin_lut(dip);
    const auto element = [this](int part) {
        const double value = std::abs(part) == n ? sinDip : part == 0 ? 0.0 : cosDip;
        return part < 0 ? -value : value;
    };
    const Positions& field =
        isPrimary() ? primaryField
                    : secondField[static_cast<std::size_t>(secondSensorLayout(formFactor, hinge))];
    expectedValues = Matrix(static_cast<int>(field.size()), 3);
    for (std::size_t i = 0; i < field.size(); ++i) {
        const auto [x, y, z] = field[i];
        expectedValues.setRow(static_cast<int>(i),
                              Vector{element(x), element(y), element(z)} * size);
    }
}

double Magnetometer::findDipAngle(int count, double size, const std::vector<Vector>& positions,
                                  double low, double high) {
    double best = low;
    double leastError = 0.0;
    for (int i = 0; i < count; ++i) {
        const double angle = static_cast<double>(i) / count * (high - low) + low;
        buildExpectedValues(angle, size);
        const double error = meanAngleError(positions, bestRotation(positions));
        if (i == 0 || error < leastError) {
            best = angle;
            leastError = error;
        }
    }
    return best;
}

double Magnetometer::meanAngleError(const std::vector<Vector>& positions,
                                    const Matrix& rotation) const {
    double total = 0.0;
    for (std::size_t i = 0; i < positions.size(); ++i)
        total += angleBetween(rotation * positions[i], row(expectedValues, static_cast<int>(i)));
    return total / static_cast<double>(positions.size());
}

}  // namespace tavoren
