#include "simulator/FirmwareRecord.h"

#include "sensors/InertialSensor.h"
#include "sensors/LightRecord.h"
#include "sensors/StaticRecord.h"

namespace tavoren::simulator {

namespace {

constexpr std::uint32_t identityMapping = 0x00010101;
constexpr std::uint8_t vendorFormat = 128;

Correction inertialCorrection(const Sensor& sensor, const ByteString& record) {
    Correction correction;
    const std::uint16_t divider = StaticRecord::divider(record);
    for (int k = 0; k < 9; ++k)
        correction.matrix(k / 3, k % 3) = StaticRecord::numerator(record, k) /
                                          (divider != 0 ? static_cast<double>(divider) : 1.0);
    correction.matrix =
        correction.matrix * InertialSensor::expandAxisMapping(StaticRecord::mapping(record));
    for (int axis = 0; axis < 3; ++axis)
        correction.offset[axis] =
            convertUnit(StaticRecord::offset(record, axis), sensor.firmwareUnit, sensor.dataUnit);
    return correction;
}

Correction lightCorrection(const ByteString& record) {
    const std::uint8_t divider = LightRecord::divider(record);
    Correction correction;
    correction.matrix(0, 0) =
        LightRecord::multiplier(record) / (divider != 0 ? static_cast<double>(divider) : 1.0);
    return correction;
}

ByteString factoryStatic() {
    ByteString record(StaticRecord::size);
    for (const int k : {0, 4, 8})
        StaticRecord::setNumerator(record, k, 1);
    StaticRecord::setDivider(record, 1);
    StaticRecord::setMapping(record, identityMapping);
    StaticRecord::setVendorLength(record, 4);
    record.insert(record.end(), {0x54, 0x61, 0x76, 0x6F});
    return record;
}

ByteString factoryDynamic(const Sensor& sensor) {
    ByteString record(sensor.formatId == 2 ? 71 : 12, 0xA5);
    record[0] = sensor.formatId;
    record[1] = 0;
    writeLittleEndian<std::int32_t>(record, 2, 500);
    return record;
}

ByteString factoryLight() {
    ByteString record(LightRecord::sizeFor(LightRecord::fewestSteps));
    record[0] = 1;
    LightRecord::setFactor(record, 1, 1);
    record[LightRecord::stepCountAt] = LightRecord::fewestSteps;
    for (std::size_t step = 0; step < LightRecord::fewestSteps; ++step) {
        const std::size_t at = LightRecord::sizeFor(step);
        writeLittleEndian<std::uint16_t>(record, at, 100);
        writeLittleEndian(record, at + LightRecord::luxInStep,
                          static_cast<std::uint16_t>(500 * step));
    }
    return record;
}

}  // namespace

Correction correctionOf(const Sensor& sensor, const ByteString& record) {
    if (record.empty() || record.front() >= vendorFormat || !sensor.luid.hasStaticData())
        return {};
    if (sensor.category == Sensor::inertial)
        return inertialCorrection(sensor, record);
    return sensor.category == Sensor::ambientLight ? lightCorrection(record) : Correction{};
}

ByteString factoryRecord(const Sensor& sensor) {
    if (sensor.category == Sensor::generic)
        return {vendorFormat, 1, 0x10, 0x20, 0x30};
    if (sensor.category == Sensor::ambientLight)
        return factoryLight();
    if (sensor.luid.hasStaticData() || !sensor.luid.hasDynamicData())
        return factoryStatic();
    return factoryDynamic(sensor);
}

}  // namespace tavoren::simulator
