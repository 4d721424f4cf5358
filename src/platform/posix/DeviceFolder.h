#pragma once

#include <filesystem>
#include <vector>

#include "platform/Platform.h"

namespace tavoren {

/// The interface class of the bus driver, {AA1DCD67-308F-4DAA-A2B9-2782D4703C5D}.
inline constexpr GUID busDriverClass{
    0xAA1DCD67, 0x308F, 0x4DAA, {0xA2, 0xB9, 0x27, 0x82, 0xD4, 0x70, 0x3C, 0x5D}};

/// Paths of the devices of a class in the order of their names, relative to the working directory:
/// the address of a socket holds little more than 100 bytes.
std::vector<std::filesystem::path> presentDevices(const GUID& interfaceClass);

}  // namespace tavoren
