#include "control/CalibrationManager.h"

#include <locale>
#include <sstream>

#include "common/CalibrationException.h"
#include "control/Process.h"
#include "files/CalibrationFile.h"
#include "files/TestingConfig.h"
#include "firmware/SDT.h"
#include "frame/Console.h"
#include "frame/Logger.h"
#include "frame/VerdictColor.h"
#include "platform/Files.h"
#include "platform/Platform.h"
#include "sensors/Sensor.h"

namespace tavoren {

namespace {

constexpr const char* startFunction = "CalibrationManager::start";

/// Makes one directory level; true if it is there afterwards.
bool createDirectory(const std::string& path) {
    return CreateDirectoryA(path.c_str(), nullptr) != FALSE ||
           GetLastError() == ERROR_ALREADY_EXISTS;
}

}  // namespace

CalibrationManager::CalibrationManager(const CommandLine& arguments, std::function<bool()> elevated)
    : commandLine(arguments),
      isElevated(std::move(elevated)),
      smhi(std::make_shared<SDT>()),
      exportEnabled(arguments.isSet("ExportAllFiles")) {
    if (!exportEnabled)
        return;
    const std::string folder = commandLine.value("ExportAllFiles");
    if (!createDirectory(folder) && !makeDirectoryTree(folder))
        Console::printLine("Failed creating directory");
    exportFolder_ = folder + "\\";
}

std::string CalibrationManager::exportFolder() const {
    return exportFolder_;
}

bool CalibrationManager::isReplay() const {
    return commandLine.isSet("UseRawData");
}

bool CalibrationManager::isOffline() const {
    return commandLine.isSet("CalibrateOffline") || (testing && isReplay());
}

void CalibrationManager::start() {
    Logger::write(LogLevel::insane, startFunction, __LINE__, "Started CalibrationManager::start");
    prepare();
    try {
        run();
    } catch (const CalibrationException& e) {
        finishFailedRun(e.what());
        throw CalibrationException(e.what());
    }
    writeDump();
    if (calibrating)
        writeCalibratedDump();
    if (calibrating || magneticTest)
        for (const auto& sensor : calibratingSensors)
            Console::print(sensor->resultText());
    {
        const VerdictColor color(true);
        Console::printLine(calibrating ? "Calibration process completed successfully"
                                       : "Completed successfully");
    }
    Logger::write(LogLevel::insane, startFunction, __LINE__, "Finished CalibrationManager::start");
}

/// Everything before the first sample. A failure here leaves no verdict, dump or log file.
void CalibrationManager::prepare() {
    loadTestingConfig(testingConfig());
    calibrating = commandLine.isSet("Calibrate") || commandLine.isSet("CalibrateOffline");
    magneticTest = commandLine.isSet("MagTest");
    testing = commandLine.isSet("TestCalibration") || magneticTest;
    flushing = commandLine.isSet("ImportXml") || (calibrating && commandLine.isSet("UpdateTVN"));
    setUp();
    Console::printLine("Sensors to calibrate: ");
    printSensors();
    if (mode != RunMode::none) {
        sensorManager.setSensors(calibratingSensors);
        sensorManager.setProcess(process);
    }
    if ((calibrating || testing) && !isReplay())
        configureSampling();
    saveFirmwareData();
}

void CalibrationManager::setUp() {
    if (calibrating || testing)
        initProcess();
    if (isOffline()) {
        initOfflineSensors();
    } else {
        if (!isElevated())
            throw CalibrationException(
                "Process does not have required priviliges. Please run as Administrator");
        Logger::write(LogLevel::info, startFunction, __LINE__, "before initPhysicalSensors");
        initPhysicalSensors();
        Logger::write(LogLevel::info, startFunction, __LINE__, "after initPhysicalSensors");
    }
    if (calibrating || testing) {
        initCalibratingSensors();
        Logger::write(LogLevel::debug, startFunction, __LINE__, "After initCalibratingSensors");
        if (calibrating)
            pairDynamicSensors();
    }
    const bool calibratesDevice = calibrating && !commandLine.isSet("CalibrateOffline");
    if (commandLine.isSet("ExportXml") || calibratesDevice)
        loadSensorsData();
}

void CalibrationManager::printSensors() const {
    for (const auto& sensor : calibratingSensors)
        Console::printLine("\t" + luidToString(sensor->luid) + ", " + sensor->displayName() +
                           ", formfactor: " + sensor->formFactorName() +
                           ", hinge configuration: " + sensor->hingeName());
}

void CalibrationManager::configureSampling() {
    if (commandLine.isSet("SamplingInterval")) {
        std::istringstream text(commandLine.value("SamplingInterval"));
        text.imbue(std::locale::classic());
        std::uint32_t interval = 0;
        text >> interval;  // out of range: the largest number
        sensorManager.setSamplingInterval(interval);
    }
    sensorManager.configureSampling();
}

void CalibrationManager::saveFirmwareData() {
    const bool exporting = commandLine.isSet("ExportXml");
    if (!exporting && (!calibrating || commandLine.isSet("CalibrateOffline")))
        return;
    std::string path;
    if (exportEnabled)
        path = exportFolder_ + "currentCalibration.xml";
    else if (exporting)
        path = commandLine.value("ExportXml");
    else
        return;
    Console::printLine("Saving original calibration data to file " + path);
    if (!exportEnabled)
        createExportDirectory(path);
    writeCalibrationFile(path, physicalSensors, true);
}

void CalibrationManager::createExportDirectory(const std::string& path) const {
    const std::size_t separator = path.find_last_of(pathSeparators);
    if (separator == std::string::npos)
        return;
    const std::string directory = path.substr(0, separator);
    if (directory.empty() && path.front() == '/')  // the root is there
        return;
    if (!createDirectory(directory))
        throw CalibrationException("Failed to create path " + directory);
}

/// From the first sample to the flush: what a failure answers with the red verdict.
void CalibrationManager::run() {
    if (calibrating || testing) {
        Logger::write(LogLevel::info, startFunction, __LINE__, "before  collectData");
        collectData();
        Console::printLine("data collection finished");
        if (calibrating)
            calibrateAll();
        else if (magneticTest)
            magTest();
        else
            testAll();
    }
    if (exportEnabled && calibrating) {
        const std::string path = exportFolder_ + "resultCalibration.xml";
        Console::printLine("Saving calibration data to file " + path);
        writeCalibrationFile(path, physicalSensors, false);
    }
    if (flushing) {
        Console::printLine("Saving calibration data to FW");
        flushCalibrationData();
    }
}

void CalibrationManager::finishFailedRun(const std::string& text) {
    Logger::write(LogLevel::debug, startFunction, __LINE__,
                  "Caught CalibrationException - " + text);
    {
        const VerdictColor color(false);
        Console::print(testing ? "TEST FAILED\n" : "CALIBRATION FAILED\n");
    }
    if (process)
        process->currentStep = 0;
    writeDump();
    Logger::saveToFile();
    Logger::write(LogLevel::error, startFunction, __LINE__,
                  "LOG FILE IS SAVED SINCE ERROR OCCURED.");
}

void CalibrationManager::abort() {
    constexpr const char* function = "CalibrationManager::abort";
    const std::lock_guard lock(statusLock);
    try {
        const CollectionStatus reached = status;
        Logger::write(LogLevel::debug, function, __LINE__,
                      "data collecting status is: " + std::to_string(static_cast<int>(reached)));
        if (reached == CollectionStatus::neverStarted)
            return;
        if (reached == CollectionStatus::sampling) {
            Logger::write(LogLevel::debug, function, __LINE__, "Calling stop sampling func");
            try {
                sensorManager.stopSampling();
            } catch (const CalibrationException&) {
                Logger::write(LogLevel::warning, function, __LINE__, "Caught exception");
            }
        }
        Logger::write(LogLevel::debug, function, __LINE__, "Calling write dump func");
        writeDump();
    } catch (const std::exception& e) {
        Logger::write(LogLevel::warning, function, __LINE__, "Caught exception");
        Logger::write(LogLevel::warning, function, __LINE__, e.what());
    }
}

}  // namespace tavoren
