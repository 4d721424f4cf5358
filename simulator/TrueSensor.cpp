#include "simulator/TrueSensor.h"

#include <algorithm>
#include <array>

#include "numerics/SingularValues.h"
#include "sensors/Sensor.h"

namespace tavoren::simulator {

namespace {

using Quantity = SensorKind::Quantity;

struct ErrorRow {
    Quantity quantity;
    double offset;  // largest, in the unit of the data
    double noise;
};

constexpr std::array errorTable{
    ErrorRow{Quantity::acceleration, 0.08, 0.0008},  // g
    ErrorRow{Quantity::rate, 1.5, 0.03},             // degrees per second
    ErrorRow{Quantity::field, 200.0, 0.8},           // milligauss
    ErrorRow{Quantity::light, 0.0, 0.2},             // lux
    ErrorRow{Quantity::none, 0.0, 0.0},
};

constexpr double largestGain = 0.03;      // of a scale from 1
constexpr double largestCoupling = 0.01;  // between two axes

double draw(double largest, std::mt19937& random) {
    // Not std::uniform_real_distribution, whose numbers differ from library to library.
    return largest * (2.0 * static_cast<double>(random()) / 4294967295.0 - 1.0);
}

/// One of the 24 ways to put a part on a board.
Matrix drawMapping(std::mt19937& random) {
    Matrix mapping(3, 3);
    const auto first = static_cast<int>(random() % 3U);
    const auto second = (first + 1 + static_cast<int>(random() % 2U)) % 3;
    mapping(0, first) = random() % 2U == 0U ? 1.0 : -1.0;
    mapping(1, second) = random() % 2U == 0U ? 1.0 : -1.0;
    mapping.setRow(2, vector3CrossProduct(row(mapping, 0), row(mapping, 1)));
    for (int k = 0; k < 9; ++k)
        mapping(k / 3, k % 3) += 0.0;  // no negative zeros
    return mapping;
}

Matrix drawScale(Quantity quantity, bool coupled, std::mt19937& random) {
    std::array<double, 3> gains{};
    for (double& gain : gains)
        gain = 1.0 + draw(largestGain, random);
    // A four-step calibration tells a gyroscope's gains in ascending order, not by axis.
    if (quantity == Quantity::rate && !coupled)
        std::sort(gains.begin(), gains.end());
    Matrix scale(3, 3);
    for (int i = 0; i < 3; ++i)
        for (int k = 0; k < 3; ++k)
            scale(i, k) = i == k    ? gains[static_cast<std::size_t>(i)]
                          : coupled ? draw(largestCoupling, random)
                                    : 0.0;
    return scale;
}

}  // namespace

Vector TrueSensor::raw(const Vector& device) const {
    return inverse3(scale * mapping) * (body * device) + offset;
}

TrueSensor drawSensor(const SensorKind& kind, Errors errors, double noiseFactor,
                      std::mt19937& random) {
    const auto* const limits =
        std::find_if(errorTable.begin(), errorTable.end(),
                     [&kind](const ErrorRow& r) { return r.quantity == kind.quantity; });
    TrueSensor sensor;
    sensor.noise = limits->noise * noiseFactor;
    if (errors == Errors::none)
        return sensor;
    if (errors != Errors::offset) {
        sensor.scale = drawScale(kind.quantity, errors == Errors::full, random);
        sensor.mapping = drawMapping(random);
    }
    // The size of the field is not known to a calibration: its scale is 1 in the mean.
    if (kind.quantity == Quantity::field)
        sensor.scale = sensor.scale / (trace(SingularValues(sensor.scale).singular) / 3.0);
    for (double& element : sensor.offset)
        element = draw(limits->offset, random);
    return sensor;
}

Matrix lidAxes(std::uint8_t formFactor, std::uint8_t hinge) {
    const Matrix bottom(3, 3, {1, 0, 0, 0, -1, 0, 0, 0, -1});
    const Matrix top(3, 3, {-1, 0, 0, 0, 1, 0, 0, 0, -1});
    const Matrix left(3, 3, {0, -1, 0, -1, 0, 0, 0, 0, -1});
    const Matrix right(3, 3, {0, 1, 0, 1, 0, 0, 0, 0, -1});
    if (hinge > 3)
        return identity(3);
    if (formFactor == Sensor::formFactor2in1)
        return std::array{bottom, top, left, right}[hinge];
    if (formFactor == Sensor::formFactorMid)
        return hinge < 2 ? bottom : top;
    return identity(3);
}

}  // namespace tavoren::simulator
