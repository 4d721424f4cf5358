#include "common/SmhiException.h"
#include "control/CalibrationManager.h"
#include "firmware/SDT.h"
#include "frame/Console.h"
#include "frame/Logger.h"
#include "sensors/Sensor.h"

namespace tavoren {

void CalibrationManager::loadSensorsData() {
    const bool everySensor = commandLine.isSet("ExportXml") || commandLine.isSet("ImportXml");
    if (everySensor)
        Console::printLine("Loading calibration data from FW, this might take a while...");
    for (const auto& sensor : everySensor ? physicalSensors : calibratingSensors)
        loadSensorData(*sensor);
    if (everySensor ||
        (calibrating && (sequence == SequenceKind::minimal || mode != RunMode::calibrate)))
        return;
    for (const auto& sensor : calibratingSensors)
        if (const auto found = dynamicSensors.find(sensor); found != dynamicSensors.end())
            loadSensorData(*found->second);
}

void CalibrationManager::loadSensorData(Sensor& sensor) {
    constexpr const char* function = "CalibrationManager::loadSensorsData";
    Logger::write(LogLevel::debug, function, __LINE__,
                  "Calling getCalibrationData for sensor " + sensor.displayName());
    try {
        sensor.getCalibrationData();
    } catch (const SmhiException&) {
        Logger::write(LogLevel::warning, function, __LINE__,
                      "Caught exception from getCalibrationData");
    }
}

void CalibrationManager::flushCalibrationData() {
    constexpr const char* function = "CalibrationManager::flushCalibrationData";
    Logger::write(LogLevel::info, function, __LINE__, "Started flushCalibrationData");
    for (const auto& sensor : physicalSensors)
        smhi->setCalibrationData(sensor->luid, sensor->calibrationData);
    restartKlv();
    Logger::write(LogLevel::info, function, __LINE__, "Finished flushCalibrationData");
}

void CalibrationManager::restartKlv() {
    constexpr const char* function = "CalibrationManager::restartKlv";
    Logger::write(LogLevel::debug, function, __LINE__, "Started restart KLV");
    smhi->resetTvn();
    Logger::write(LogLevel::debug, function, __LINE__, "Finished restart KLV");
}

}  // namespace tavoren
