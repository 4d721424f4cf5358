#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "common/CalibrationException.h"

namespace tavoren {

/// Calibration data and other byte records of the firmware. All their numbers are little-endian.
using ByteString = std::vector<std::uint8_t>;

/// The number at `offset`; throws `CalibrationException` "Invalid calibration data size" beyond
/// the end.
template <typename Integer>
Integer readLittleEndian(const ByteString& bytes, std::size_t offset) {
    if (offset > bytes.size() || bytes.size() - offset < sizeof(Integer))
        throw CalibrationException("Invalid calibration data size");
    std::make_unsigned_t<Integer> value = 0;
    for (std::size_t k = 0; k < sizeof(Integer); ++k)
        value = static_cast<std::make_unsigned_t<Integer>>(
            value | static_cast<std::make_unsigned_t<Integer>>(bytes[offset + k]) << (8 * k));
    return static_cast<Integer>(value);
}

/// Overwrites the number at `offset`; throws as `readLittleEndian`.
template <typename Integer>
void writeLittleEndian(ByteString& bytes, std::size_t offset, Integer value) {
    if (offset > bytes.size() || bytes.size() - offset < sizeof(Integer))
        throw CalibrationException("Invalid calibration data size");
    for (std::size_t k = 0; k < sizeof(Integer); ++k)
        bytes[offset + k] =
            static_cast<std::uint8_t>(static_cast<std::make_unsigned_t<Integer>>(value) >> (8 * k));
}

}  // namespace tavoren
