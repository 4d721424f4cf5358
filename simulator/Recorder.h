#pragma once

#include <string>

#include "simulator/Device.h"
#include "simulator/Script.h"

namespace tavoren::simulator {

/// Writes what the hub would publish during a script as dump files "dataDump<sensor>.csv" in a
/// folder, which is made if need be. Throws `CalibrationException` if that fails.
void recordDumps(Device& device, const Script& script, const std::string& folder);

/// Writes what the device's sensors were built as: a line "<sensor>.<parameter>=<values>" each,
/// values in the unit of the dump, matrices row by row. Throws `CalibrationException`.
void writeTruth(const Device& device, const std::string& path);

}  // namespace tavoren::simulator
