#pragma once

#include "common/ByteString.h"

namespace tavoren {

/// The layout of the firmware's static record. All numbers are little-endian; every access throws
/// `CalibrationException` "Invalid calibration data size" beyond the end.
///
///     0  FormatId     2  offset, 3 x int32      14  scale numerators, 9 x int16
///     1  Version     32  scale divider, uint16  34  axis mapping, 9 fields of 2 bits in a uint32
///                    38  vendor data length     40  vendor data
namespace StaticRecord {

inline constexpr std::size_t headerSize = 2;  ///< FormatId and Version; the body follows
inline constexpr std::size_t offsetAt = 2;
inline constexpr std::size_t numeratorsAt = 14;
inline constexpr std::size_t dividerAt = 32;
inline constexpr std::size_t mappingAt = 34;
inline constexpr std::size_t vendorLengthAt = 38;
inline constexpr std::size_t vendorDataAt = 40;
inline constexpr std::size_t sizeUpToMapping = vendorLengthAt;
inline constexpr std::size_t size = 40;  ///< without vendor data

inline std::int32_t offset(const ByteString& record, int axis) {
    return readLittleEndian<std::int32_t>(record, offsetAt + 4 * static_cast<std::size_t>(axis));
}
/// Element `index` of the row-major scale matrix, before the division.
inline std::int16_t numerator(const ByteString& record, int index) {
    return readLittleEndian<std::int16_t>(record,
                                          numeratorsAt + 2 * static_cast<std::size_t>(index));
}
/// 0 means no division.
inline std::uint16_t divider(const ByteString& record) {
    return readLittleEndian<std::uint16_t>(record, dividerAt);
}
inline std::uint32_t mapping(const ByteString& record) {
    return readLittleEndian<std::uint32_t>(record, mappingAt);
}
inline std::uint16_t vendorLength(const ByteString& record) {
    return readLittleEndian<std::uint16_t>(record, vendorLengthAt);
}

inline void setOffset(ByteString& record, int axis, std::int32_t value) {
    writeLittleEndian(record, offsetAt + 4 * static_cast<std::size_t>(axis), value);
}
inline void setNumerator(ByteString& record, int index, std::int16_t value) {
    writeLittleEndian(record, numeratorsAt + 2 * static_cast<std::size_t>(index), value);
}
inline void setDivider(ByteString& record, std::uint16_t value) {
    writeLittleEndian(record, dividerAt, value);
}
inline void setMapping(ByteString& record, std::uint32_t value) {
    writeLittleEndian(record, mappingAt, value);
}
inline void setVendorLength(ByteString& record, std::uint16_t value) {
    writeLittleEndian(record, vendorLengthAt, value);
}

}  // namespace StaticRecord

}  // namespace tavoren
