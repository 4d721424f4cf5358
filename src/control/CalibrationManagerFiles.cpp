#include <array>
#include <ctime>

#include "common/CalibrationException.h"
#include "common/Utf8.h"
#include "common/Version.h"
#include "control/CalibrationManager.h"
#include "files/CsvParser.h"
#include "files/xml/XmlDeclaration.h"
#include "files/xml/XmlDocument.h"
#include "files/xml/XmlElement.h"
#include "frame/Console.h"
#include "frame/Logger.h"
#include "platform/Files.h"
#include "sensors/Sensor.h"

namespace tavoren {

namespace {

struct LogType {
    RunMode mode;
    SequenceKind sequence;
    const char* text;
};

constexpr std::array logTypes{
    LogType{RunMode::calibrate, SequenceKind::full, "NewMotionFull"},
    LogType{RunMode::calibrate, SequenceKind::minimal, "MotionMin"},
    LogType{RunMode::calibrate, SequenceKind::fourSteps, "Motion4Steps"},
    LogType{RunMode::test, SequenceKind::full, "7stepsTest"},
    LogType{RunMode::test, SequenceKind::minimal, "FaceUpTest"},
    LogType{RunMode::test, SequenceKind::fourSteps, "4StepsTest"},
    LogType{RunMode::test, SequenceKind::magAccuracy, "4StepsMagTest"},
};

/// The local time without zero padding: "2025-3-7. 8:9". Main thread only.
std::string dateText() {
    const std::time_t now = std::time(nullptr);
    const std::tm* const local = std::localtime(&now);
    if (!local)
        return {};
    return std::to_string(local->tm_year + 1900) + "-" + std::to_string(local->tm_mon + 1) + "-" +
           std::to_string(local->tm_mday) + ". " + std::to_string(local->tm_hour) + ":" +
           std::to_string(local->tm_min);
}

}  // namespace

std::string CalibrationManager::resultLogType() const {
    if (mode == RunMode::ambientLight)
        return "Als";
    if (mode == RunMode::magneticTest)
        return "MagnetometerPreTest";
    for (const LogType& type : logTypes)
        if (type.mode == mode && type.sequence == sequence)
            return type.text;
    return {};
}

std::string CalibrationManager::resultLogName() const {
    return mode == RunMode::calibrate      ? "AGMLogFile.xml"
           : mode == RunMode::ambientLight ? "AlsLogFile.xml"
                                           : "LogFile.xml";
}

void CalibrationManager::writeResultLog() {
    if (!exportEnabled)
        return;
    auto log = std::make_shared<XmlElement>(L"Log");
    log->setAttribute(L"Date", widen(dateText()));
    log->setAttribute(L"Version", versionText);
    log->setAttribute(L"Type", widen(resultLogType()));
    for (const auto& sensor : physicalSensors)
        if (auto element = sensor->releaseLogNode())
            log->addChild(std::move(element));
    XmlDocument document;
    document.addChild(
        std::make_shared<XmlDeclaration>(L"xml", L"version=\"1.0\" encoding=\"UTF-8\""));
    document.addChild(std::move(log));
    if (document.save(exportFolder_ + resultLogName()) != 0)
        throw CalibrationException("Failed to write to file");
}

void CalibrationManager::writeErrorLog(const std::string& text) const {
    if (!replaceFile(exportFolder_ + "\\error.log", text, LineEnds::platform))
        throw CalibrationException("Error. NULL referenced.");
}

void CalibrationManager::writeDump() {
    if (!exportEnabled || isReplay() || status == CollectionStatus::dumpWritten)
        return;
    const std::lock_guard lock(dumpLock);
    Logger::write(LogLevel::debug, "CalibrationManager::writeDump", __LINE__,
                  "write dump func, data collecting status is: " +
                      std::to_string(static_cast<int>(status.load())));
    Console::printLine("Saving data dump to file " + exportFolder_ + "dataDump");
    writeDumpFiles("dataDump", sensorManager.rawData());
}

void CalibrationManager::writeCalibratedDump() {
    if (!commandLine.isSet("ExportResult") || status == CollectionStatus::dumpWritten)
        return;
    const std::lock_guard lock(dumpLock);
    Logger::write(LogLevel::debug, "CalibrationManager::writeCalibratedDump", __LINE__,
                  "write out dump func, data collecting status is: " +
                      std::to_string(static_cast<int>(status.load())));
    Console::printLine("Saving out data dump to file " + exportFolder_ + "calibratedDataDump");
    writeDumpFiles("calibratedDataDump", sensorManager.calibratedData());
}

void CalibrationManager::writeDumpFiles(std::string_view baseName, const SensorDataMap& data) {
    try {
        CsvParser().writeToFile(exportFolder_ + std::string(baseName) + ".csv", data,
                                sensorManager.sensors);
    } catch (const CalibrationException&) {
        status = CollectionStatus::dumpWritten;
        throw;
    }
    status = CollectionStatus::dumpWritten;
}

}  // namespace tavoren
