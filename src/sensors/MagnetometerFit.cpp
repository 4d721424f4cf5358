#include <algorithm>
#include <array>
#include <span>

#include "common/CalibrationException.h"
#include "common/MathException.h"
#include "numerics/NormalEquations.h"
#include "numerics/SampleAxes.h"
#include "sensors/Magnetometer.h"
#include "sensors/SecondSensorLayout.h"
#include "sensors/SignedAxes.h"

namespace tavoren {

namespace {

constexpr double quarterTurn = 1.5707963267948966;
constexpr double fineSearchWidth = 0.06283185307179587;  // one coarse step to either side
constexpr int coarseSteps = 50;
constexpr int fineSteps = 100;

// The axes of the device in those of a second sensor, by `SecondSensorLayout`.
constexpr std::array<std::array<SignedAxis, 3>, 4> secondAxes{{
    {{{1, 0, 0}, {0, -1, 0}, {0, 0, -1}}},
    {{{-1, 0, 0}, {0, 1, 0}, {0, 0, -1}}},
    {{{0, -1, 0}, {-1, 0, 0}, {0, 0, -1}}},
    {{{0, 1, 0}, {1, 0, 0}, {0, 0, -1}}},
}};

/// A turn of the full sequence: the samples between two of its segment boundaries, without the
/// last ones, in which the device may have moved on.
struct Turn {
    std::size_t boundary;
    std::int64_t dropped;
};

constexpr Turn turnAboutZ{1, 1};
constexpr Turn turnAboutY{5, 5};
constexpr Turn turnAboutX{9, 9};

Vector axesVector(const SensorSample& sample) {
    return Vector(axesOf(sample));
}

}  // namespace

std::vector<SensorSample> Magnetometer::decimateSamples(std::span<const SensorSample> samples,
                                                        double distance) {
    if (samples.empty())
        throw MathException("The buffer is empty");
    std::vector<SensorSample> kept{samples.front()};
    for (const SensorSample& sample : samples.subspan(1))
        if (norm(axesVector(sample) - axesVector(kept.back())) > distance)
            kept.push_back(sample);
    return kept;
}

std::vector<Vector> Magnetometer::correctedPositions(const Ellipsoid& ellipsoid) const {
    std::vector<Vector> positions;
    positions.reserve(static_cast<std::size_t>(positionCount));
    for (int i = 0; i < positionCount; ++i)
        positions.push_back(ellipsoid.apply(row(segmentValues, i)));
    return positions;
}

void Magnetometer::calcFromEllipsoid(const Ellipsoid& ellipsoid) {
    const std::vector<Vector> positions = correctedPositions(ellipsoid);
    double size = 0.0;
    for (const Vector& position : positions)
        size += norm(position);
    size /= static_cast<double>(positions.size());
    double dip = findDipAngle(coarseSteps, size, positions, -quarterTurn, quarterTurn);
    dip = findDipAngle(fineSteps, size, positions, dip - fineSearchWidth, dip + fineSearchWidth);
    buildExpectedValues(dip, size);

    const std::vector<std::int64_t> index = findIndex();
    const auto axisOf = [&](Turn turn) {
        if (turn.boundary + 1 >= index.size())
            throw CalibrationException(displayName() +
                                       " Calibration Error: Failed splitting data to segments");
        const std::int64_t first = index[turn.boundary];
        const std::int64_t end = std::max(first, index[turn.boundary + 1] - turn.dropped);
        return rotationAxisOf(
            std::span<const SensorSample>(bufferedData)
                .subspan(static_cast<std::size_t>(first), static_cast<std::size_t>(end - first)),
            ellipsoid);
    };
    Matrix axes = fromRows({axisOf(turnAboutX), axisOf(turnAboutY), axisOf(turnAboutZ)});
    if (!isPrimary()) {
        const auto layout = static_cast<std::size_t>(secondSensorLayout(formFactor, hinge));
        axes = inverse3(matrixOf(secondAxes[layout], 1.0)) * axes;
    }
    scaleMatrix = axes * ellipsoid.scaleMatrix;
    offset = ellipsoid.center;
}

Vector Magnetometer::rotationAxisOf(std::span<const SensorSample> samples,
                                    const Ellipsoid& ellipsoid) {
    NormalEquations<3> equations;
    for (const SensorSample& sample : samples) {
        const Vector y = ellipsoid.apply(axesVector(sample));
        equations.add({y[0], y[1], y[2]}, 0.0);
    }
    // The inverse meets each row before the right-hand side does: the order shows in the last
    // digit.
    const Matrix inverted = inverse3(equations.gram());
    Vector axis(3);
    for (const SensorSample& sample : samples) {
        const Vector y = ellipsoid.apply(axesVector(sample));
        axis += inverted * y * -norm(y);
    }
    return normalized(axis);
}

}  // namespace tavoren
