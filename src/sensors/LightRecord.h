#pragma once

#include "common/ByteString.h"

namespace tavoren {

/// The layout of the firmware's ambient light record. All numbers are little-endian; every access
/// throws `CalibrationException` "Invalid calibration data size" beyond the end.
///
///     0  FormatId     2  multiplier, uint16     5  number of steps n, uint8
///     1  Version      4  divider, uint8         6  n steps of scale and lux, uint16 each
/// and, if there is any, behind the steps the length of the vendor data, uint16, and the data.
namespace LightRecord {

inline constexpr std::size_t headerSize = 2;  ///< FormatId and Version; the body follows
inline constexpr std::size_t multiplierAt = 2;
inline constexpr std::size_t dividerAt = 4;
inline constexpr std::size_t stepCountAt = 5;
inline constexpr std::size_t stepsAt = 6;
inline constexpr std::size_t stepSize = 4;
inline constexpr std::size_t luxInStep = 2;
inline constexpr std::size_t lengthSize = 2;  ///< of the vendor data's length
inline constexpr std::uint8_t fewestSteps = 3;
inline constexpr std::uint8_t mostSteps = 15;

/// Bytes of a record without vendor data.
inline constexpr std::size_t sizeFor(std::size_t steps) {
    return stepsAt + stepSize * steps;
}

inline std::uint16_t multiplier(const ByteString& record) {
    return readLittleEndian<std::uint16_t>(record, multiplierAt);
}
/// 0 means no division.
inline std::uint8_t divider(const ByteString& record) {
    return readLittleEndian<std::uint8_t>(record, dividerAt);
}
inline std::uint8_t stepCount(const ByteString& record) {
    return readLittleEndian<std::uint8_t>(record, stepCountAt);
}
inline std::uint16_t scale(const ByteString& record, std::size_t step) {
    return readLittleEndian<std::uint16_t>(record, sizeFor(step));
}
inline std::uint16_t lux(const ByteString& record, std::size_t step) {
    return readLittleEndian<std::uint16_t>(record, sizeFor(step) + luxInStep);
}

inline void setFactor(ByteString& record, std::uint16_t multiplier, std::uint8_t divider) {
    writeLittleEndian(record, multiplierAt, multiplier);
    writeLittleEndian(record, dividerAt, divider);
}

}  // namespace LightRecord

}  // namespace tavoren
