#include <utility>

#include "common/CalibrationException.h"
#include "common/Text.h"
#include "frame/Logger.h"
#include "sensors/AmbientLight.h"
#include "sensors/LightRecord.h"

namespace tavoren {

namespace {

[[noreturn]] void refuseSize() {
    throw CalibrationException("Invalid Ambient Light Sensor calibration data size");
}

/// The record at its full length, with one step; the room of the steps is zero.
ByteString emptyRecord() {
    ByteString body(LightRecord::sizeFor(LightRecord::mostSteps) - LightRecord::headerSize);
    body[LightRecord::stepCountAt - LightRecord::headerSize] = 1;
    return AmbientLight::prependFormat(std::move(body));
}

}  // namespace

ByteString AmbientLight::resultRecord() const {
    ByteString record = firmwareData.empty() ? emptyRecord() : firmwareData;
    LightRecord::setFactor(record, static_cast<std::uint16_t>(truncateToInt32(multiplier)),
                           static_cast<std::uint8_t>(truncateToInt32(divider)));
    return record;
}

ByteString AmbientLight::prependFormat(ByteString body) {
    constexpr const char* function = "prependFormat";
    Logger::write(LogLevel::insane, function, __LINE__, "Started AmbientLight::prependFormat");
    body.insert(body.begin(), {1, 0});
    Logger::write(LogLevel::insane, function, __LINE__, "Finished InertialSensor::prependFormat");
    return body;
}

std::size_t AmbientLight::fixedRecordSize(const ByteString& record) {
    const std::uint8_t steps = LightRecord::stepCount(record);
    if (steps < LightRecord::fewestSteps)
        throw CalibrationException(
            "Invalid Ambient Light Sensor calibration data: not enough ALR steps");
    return LightRecord::sizeFor(steps);
}

void AmbientLight::validateCalibrationData(const ByteString& bytes) const {
    if (bytes.empty())
        refuseSize();
    if (isCustomFormat(bytes.front()))
        return;
    if (bytes.front() != formatId)
        throw CalibrationException("Unsupported format of " + name + " Sensor calibration data");
    if (bytes.size() < minDataSize)
        refuseSize();
    const std::size_t fixedSize = fixedRecordSize(bytes);
    if (bytes.size() == fixedSize)
        return;
    if (bytes.size() < fixedSize + LightRecord::lengthSize)
        refuseSize();
    const auto vendorLength = readLittleEndian<std::uint16_t>(bytes, fixedSize);
    if (bytes.size() != fixedSize + LightRecord::lengthSize + vendorLength)
        refuseSize();
}

}  // namespace tavoren
