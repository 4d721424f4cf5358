#pragma once

#include <cstdint>
#include <limits>

#include "sensors/DynamicRecord.h"
#include "sensors/LightRecord.h"
#include "sensors/Sensor.h"
#include "sensors/StaticRecord.h"

namespace tavoren::fuzz {

inline bool comesBackStatic(const ByteString& record) {
    constexpr std::uint32_t lowBits = 0x15555;  // of the nine fields
    const std::uint32_t mapping = StaticRecord::mapping(record);
    const bool everyFieldHasAMeaning = (mapping >> 1 & ~mapping & lowBits) == 0;
    return everyFieldHasAMeaning && mapping >> 18 == 0 &&
           StaticRecord::vendorLength(record) == record.size() - StaticRecord::size &&
           StaticRecord::divider(record) <= std::numeric_limits<std::int16_t>::max();
}

inline bool comesBackLight(const ByteString& record) {
    const std::uint8_t steps = LightRecord::stepCount(record);
    const std::size_t tail = record.size() - LightRecord::sizeFor(steps);
    return steps <= LightRecord::mostSteps && LightRecord::divider(record) != 0 &&
           tail != LightRecord::lengthSize;
}

/// Whether a record that its sensor accepts comes back byte by byte from its XML form. The writer
/// refuses a static record that is too short for the vendor data it announces. The reader refuses a
/// mapping field of -2, a divider above 32767 and more than 15 light steps; it saturates a white
/// noise at 2^31 - 1, makes a light divider of 0 a 1 and drops vendor data of no length.
inline bool comesBack(const Sensor& sensor, const ByteString& record) {
    if (Sensor::isCustomFormat(record.front()) || sensor.category == Sensor::generic)
        return true;
    if (sensor.category == Sensor::ambientLight)
        return comesBackLight(record);
    if (sensor.luid.hasStaticData())
        return comesBackStatic(record);
    return !sensor.luid.hasDynamicData() ||
           readLittleEndian<std::int32_t>(record, DynamicRecord::whiteNoiseAt) >= 0;
}

}  // namespace tavoren::fuzz
