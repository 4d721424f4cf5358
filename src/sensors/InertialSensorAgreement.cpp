#include <algorithm>
#include <numeric>

#include "common/CalibrationException.h"
#include "numerics/Interpolation.h"
#include "numerics/Quaternion.h"
#include "numerics/SingularValues.h"
#include "sensors/InertialSensor.h"

namespace tavoren {

namespace {

constexpr double predictionsPerMovement = 200.0;
constexpr double radiansPerDegreeMs = 1.7453292519943296e-05;  // pi / 180 / 1000

SensorSample sampleOf(double time, const Vector& values) {
    return {time, SampleValues(std::span(values.begin(), values.end()))};
}

}  // namespace

Vector InertialSensor::modelValue(std::int64_t index, bool fromPositions) const {
    try {
        if (fromPositions)
            return applyModel(row(segmentValues, static_cast<int>(index)));
        if (index < 0 || static_cast<std::size_t>(index) >= bufferedData.size())
            throw CalibrationException("no such sample");
        return applyModel(sampleVector(index));
    } catch (const std::exception&) {
        throw CalibrationException("exception thrown in calibration");
    }
}

Vector InertialSensor::applyModel(const Vector& raw) const {
    return scaleMatrix * axisMapping * (raw - offset);
}

std::vector<SensorSample> InertialSensor::calibrated(std::span<const SensorSample> samples) const {
    std::vector<SensorSample> result(samples.begin(), samples.end());
    for (SensorSample& sample : result) {
        if (sample.values.size() != 3)
            continue;
        const Vector value =
            applyModel(Vector{sample.values[0], sample.values[1], sample.values[2]});
        sample.values = SampleValues(std::span(value.begin(), value.end()));
    }
    return result;
}

std::vector<SensorSample> InertialSensor::predictByRotation(double start, double end,
                                                            const InertialSensor& gyroscope,
                                                            int position,
                                                            const Matrix& rotation) const {
    const double piece = (end - start) / predictionsPerMovement;
    std::vector<SensorSample> predicted{sampleOf(start, modelValue(position, true))};
    auto own = static_cast<std::int64_t>(bufferedData.firstAfter(start));
    auto other = static_cast<std::int64_t>(gyroscope.bufferedData.firstAfter(start));
    const auto ownEnd = static_cast<std::int64_t>(bufferedData.size());
    const auto otherEnd = static_cast<std::int64_t>(gyroscope.bufferedData.size());
    if (own == ownEnd)
        throw CalibrationException("buffered data of sensor" + displayName() + " is empty");
    Quaternion turned;
    double mark = start;
    for (; own < ownEnd && sampleTime(own) < end; ++own, ++other) {
        const double now = sampleTime(own);
        while (other < otherEnd && gyroscope.sampleTime(other) < now)
            ++other;
        if (other >= otherEnd)
            break;
        if (other > 0) {  // the first sample of all has no time step
            const Vector turn = rotation * gyroscope.modelValue(other, false) * -1.0 *
                                radiansPerDegreeMs *
                                (gyroscope.sampleTime(other) - gyroscope.sampleTime(other - 1));
            turned = turned * quaternionFromRotationVector(turn);
        }
        if (now > mark + piece) {
            mark = mark + piece;
            const SampleValues& last = predicted.back().values;
            predicted.push_back(
                sampleOf(now, rotateByQuaternion(turned, {last[0], last[1], last[2]})));
            turned = Quaternion();
        }
    }
    return predicted;
}

double InertialSensor::compareRotation(double start, double end, const InertialSensor& gyroscope,
                                       int position, const Matrix& rotation) const {
    const std::vector<SensorSample> predicted =
        predictByRotation(start, end, gyroscope, position, rotation);
    // The samples around the movement are all that interpolation looks at.
    const std::size_t before = bufferedData.firstAfter(start);
    const std::size_t after = bufferedData.firstAfter(end);
    const std::size_t first = before > 0 ? before - 1 : 0;
    const std::size_t last = std::min(std::max(after, before) + 1, bufferedData.size());
    const std::span<const SensorSample> samples = bufferedData;
    const std::vector<Vector> measured =
        resampleAtTimes(samples.subspan(first, last - first), predicted);
    double sum = 0.0;
    for (std::size_t k = 0; k + 1 < predicted.size(); ++k) {
        const SampleValues& values = predicted[k].values;
        sum += norm(applyModel(measured[k + 1]) - Vector{values[0], values[1], values[2]});
    }
    return predicted.size() < 2 ? 0.0 : sum / static_cast<double>(predicted.size() - 1);
}

Matrix InertialSensor::bestRotation(const std::vector<Vector>& vectors) const {
    const SingularValues decomposed(transpose(fromRows(vectors)) * expectedValues);
    return decomposed.right * transpose(decomposed.left);
}

}  // namespace tavoren
