#pragma once

#include <memory>
#include <string_view>
#include <vector>

namespace tavoren {

class Sensor;
class XmlElement;

/// Writes the calibration data of the sensors that have any; `useFirmwareData` takes what the
/// firmware holds, else what this run computed goes first. Throws `CalibrationException`.
void writeCalibrationFile(std::string_view path, const std::vector<std::shared_ptr<Sensor>>& list,
                          bool useFirmwareData);

/// The `Sensor` element of one sensor; empty if it has no data.
std::shared_ptr<XmlElement> writeSensorNode(const Sensor& sensor, bool useFirmwareData);

/// New sensors in file order, each with its data. Throws `CalibrationException` at the first fault;
/// data that the firmware completes needs the link and throws `SmhiException` without it.
std::vector<std::shared_ptr<Sensor>> readCalibrationFile(std::string_view path);

/// One sensor with its data; throws as `readCalibrationFile`.
std::shared_ptr<Sensor> readSensorNode(const XmlElement& element);

}  // namespace tavoren
