#include "common/CalibrationException.h"
#include "common/MathException.h"
#include "frame/Logger.h"
#include "frame/LogScope.h"
#include "sensors/InertialSensor.h"
#include "sensors/StaticRecord.h"

namespace tavoren {

namespace {

constexpr const char* function = "InertialSensor::calcReverseSdt";

Matrix recordedScale(const ByteString& record) {
    Matrix scale(3, 3);
    for (int k = 0; k < 9; ++k)
        scale(k / 3, k % 3) = StaticRecord::numerator(record, k);
    const std::uint16_t divider = StaticRecord::divider(record);
    return divider != 0 ? scale / divider : scale;
}

Vector recordedOffset(const ByteString& record) {
    Vector offset(3);
    for (int axis = 0; axis < 3; ++axis)
        offset[axis] = StaticRecord::offset(record, axis);
    return offset;
}

}  // namespace

void InertialSensor::calcReverseSdt() {
    const LogScope scope(function, __LINE__, LogScope::Form::entered);
    if (firmwareData.empty())
        return;
    if (isCustomFormat(firmwareData.front())) {
        Logger::write(LogLevel::error, function, __LINE__,
                      "Calibration exception was thrown from calcReverseSdt, format_id is bigger "
                      "than 127");
        throw CalibrationException(
            "Custom calibration data format. Cannot reverse SDT static calibration");
    }
    if (firmwareData.size() < StaticRecord::sizeUpToMapping)
        throw CalibrationException("Invalid calibration data size");
    try {
        const Matrix scale = recordedScale(firmwareData);
        const Matrix mapping = expandAxisMapping(StaticRecord::mapping(firmwareData));
        Matrix inverted = invertedRecord(scale, mapping);
        reverseOffset = offsetAfterRecord(scale, mapping);
        reverseMatrix = std::move(inverted);
    } catch (const MathException&) {
        Logger::write(LogLevel::error, function, __LINE__,
                      "Math exception was thrown from calcReverseSdt");
        throw CalibrationException("Failed to invert SDT data");
    }
}

/// The matrix that undoes scale and mapping of the record, logged step by step.
Matrix InertialSensor::invertedRecord(const Matrix& scale, const Matrix& mapping) {
    logMatrix(scale, L"OriginalScaling", L"Original scale matrix as extracted from the TVN");
    const Matrix inverseScale = inverse3(scale);
    logMatrix(inverseScale, L"InvertedScaling",
              L"The inverse matrix of the scale matrix extracted from the TVN");
    logMatrix(mapping, L"OriginalAxisMapping", L"Original axis mapping as extracted for the TVN");
    const Matrix inverseMapping = inverse3(mapping);
    logMatrix(inverseMapping, L"InvertedAxisMapping",
              L"The inverse matrix of the axis mapping extracted from the TVN");
    Matrix inverted = inverseMapping * inverseScale;
    logMatrix(inverted, L"ReverseMatrix",
              L"The matrix used in order to reverse static calibration done by TVN");
    return inverted;
}

/// What the record's offset leaves in a calibrated value, negated, in `dataUnit`.
Vector InertialSensor::offsetAfterRecord(const Matrix& scale, const Matrix& mapping) {
    Vector original = recordedOffset(firmwareData);
    logVector(original, L"OriginalOffset", L"Original offset as extracted from the TVN");
    for (double& element : original)
        element = convertUnit(element, firmwareUnit, dataUnit);
    Vector result = scale * mapping * original * -1.0;
    logVector(result, L"ReverseOffset",
              L"The offset used in order to reverse static calibration done by TVN");
    return result;
}

void InertialSensor::reverseStaticCalibration(SensorSample& sample) const {
    const LogScope scope("InertialSensor::reverseStaticCalibration", __LINE__,
                         LogScope::Form::entered);
    if (firmwareData.empty())
        return;
    const Vector values{sample.values[0], sample.values[1], sample.values[2]};
    const Vector raw = reverseMatrix * (values - reverseOffset);
    sample.values = SampleValues(std::span(raw.begin(), raw.end()));
}

}  // namespace tavoren
