#include "sensors/InertialSensor.h"

#include "common/CalibrationException.h"
#include "control/Process.h"
#include "firmware/SDT.h"
#include "frame/LogScope.h"
#include "sensors/SensorRun.h"

namespace tavoren {

InertialSensor::InertialSensor(const Luid& id) : Sensor(id) {
    category = inertial;
    valueCount = 3;
    if (luid.hasStaticData()) {
        minDataSize = maxDataSize = 40;
    } else if (luid.hasDynamicData()) {
        formatId = 1;
        minDataSize = 12;
        maxDataSize = 66;
    }
}

const Process& InertialSensor::process() const {
    if (!sensorManager)
        throw CalibrationException("Internal error");
    return sensorManager->runningProcess();
}

bool InertialSensor::isSequence(SequenceKind kind) const {
    return process().sequence == kind;
}

bool InertialSensor::bufferSample(const SensorSample& sample) {
    const bool minimal = isSequence(SequenceKind::minimal);
    if (minimal)
        accumulateSample(sample);
    if (!minimal || process().type == RunMode::test)
        bufferedData.append(sample);
    return true;
}

std::size_t InertialSensor::getDataSize() const {
    return sensorManager && isSequence(SequenceKind::minimal) ? sampleCount : bufferedData.size();
}

bool InertialSensor::supportsRunMode(RunMode mode) const {
    return mode == RunMode::calibrate;
}

void InertialSensor::getCalibrationDataAndPlatform() {
    Sensor::getCalibrationData();
    formFactor = SDT().getFormFactor();
    hinge = SDT().getHinge();
}

void InertialSensor::setNoGyroRotation(bool reduce) {
    noGyroRotation = reduce;
}

bool InertialSensor::isRotationDone(double) {
    return false;
}

bool InertialSensor::hasMovedFromReference() const {
    return false;
}

void InertialSensor::captureRestRate() {}

void InertialSensor::setReference(Vector value) {
    referenceValue = std::move(value);
}

Vector InertialSensor::calibratedValue(int index) const {
    return scaleMatrix * axisMapping * (row(segmentValues, index) - offset);
}

std::string InertialSensor::resultText() const {
    const LogScope scope("InertialSensor::resultText", __LINE__);
    const std::string title = isPrimary() ? name : "Second " + name;
    std::string text = title + " Offset:\n" + logText(offset);
    if (!isSequence(SequenceKind::minimal)) {
        text += title + " Scale:\n" + logText(scaleMatrix);
        text += title + " Axis mapping:\n" + logText(axisMapping);
    }
    return text;
}

void InertialSensor::resetRows() {
    const int steps = process().stepCount;
    segmentValues.setRows(isSequence(SequenceKind::full) ? positionCount : steps);
    segmentDeviations.setRows(steps);
}

void InertialSensor::convertLimits(Unit definedIn) {
    if (dataUnit == definedIn)
        return;
    const auto convert = [this, definedIn](double& limit) {
        limit = convertUnit(limit, definedIn, dataUnit);
    };
    for (double* const limit :
         {&offsetLimit, &normDeviationLimit, &whiteNoiseLimit, &maxOffset, &restDeviationLimit,
          &referenceMagnitude, &expectedNorm, &normTolerance, &defaultNoise, &expectedErrorLimit})
        convert(*limit);
    convert(expectedErrorLimit);  // twice: records in the field rest on limits made this way
}

Vector InertialSensor::sampleVector(std::int64_t index) const {
    const SampleValues& values = bufferedData[static_cast<std::size_t>(index)].values;
    return {values[0], values[1], values[2]};
}

double InertialSensor::sampleTime(std::int64_t index) const {
    return bufferedData[static_cast<std::size_t>(index)].time;
}

}  // namespace tavoren
