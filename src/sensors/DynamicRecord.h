#pragma once

#include "common/ByteString.h"

namespace tavoren {

/// The layout of the firmware's dynamic record: FormatId, Version, then the white noise as a 32-bit
/// number in the unit of the firmware; what follows is the firmware's own.
namespace DynamicRecord {

inline constexpr std::size_t whiteNoiseAt = 2;
inline constexpr std::size_t sizeUpToNoise = 6;

}  // namespace DynamicRecord

}  // namespace tavoren
