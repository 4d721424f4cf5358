#include <algorithm>
#include <array>

#include "common/CalibrationException.h"
#include "common/Extension.h"
#include "common/Text.h"
#include "control/AlsProcess.h"
#include "control/CalibrationManager.h"
#include "control/NewMotionProcess.h"
#include "control/PreTestProcess.h"
#include "files/CalibrationFile.h"
#include "files/CsvParser.h"
#include "firmware/SDT.h"
#include "frame/Logger.h"
#include "sensors/createSensor.h"
#include "sensors/Sensor.h"

namespace tavoren {

namespace {

constexpr const char* accelerometerName = "Accelerometer";
constexpr const char* gyroscopeName = "Gyroscope";
constexpr const char* magnetometerName = "Magnetometer";
constexpr const char* lightSensorName = "AmbientLightSensor";

struct OfflineType {
    std::uint16_t typeId;
    const char* stem;
};

constexpr OfflineType offlineAccelerometer{115, accelerometerName};
constexpr OfflineType offlineGyroscope{118, gyroscopeName};
constexpr OfflineType offlineMagnetometer{527, magnetometerName};
constexpr OfflineType offlineLightSensor{65, lightSensorName};

bool isSecond(const Sensor& sensor) {
    return sensor.holdsName("_2");
}

std::shared_ptr<Process> lightProcess(const CommandLine& commandLine) {
    const bool automatic = commandLine.isSet("Auto");
    auto process = std::make_shared<AlsProcess>(!automatic);
    if (automatic)
        process->setConfigFile(commandLine.value("Auto"));
    return process;
}

}  // namespace

void CalibrationManager::initProcess() {
    std::string sensors;
    if (commandLine.isSet("Calibrate") || commandLine.isSet("CalibrateOffline")) {
        mode = RunMode::calibrate;
        sensors =
            commandLine.value(commandLine.isSet("Calibrate") ? "Calibrate" : "CalibrateOffline");
    } else if (commandLine.isSet("TestCalibration")) {
        mode = RunMode::test;
        sensors = commandLine.value("TestCalibration");
    } else if (commandLine.isSet("MagTest")) {
        mode = RunMode::magneticTest;
        process = std::make_shared<PreTestProcess>();
        process->init();
        return;
    } else {
        mode = RunMode::none;
        return;
    }
    const std::string lower = toLower(sensors);
    const auto wants = [&lower](char letter) {
        return lower == "motion" || lower.find(letter) != std::string::npos;
    };
    wantAccelerometer = wants('a');
    wantGyroscope = wants('g');
    wantMagnetometer = wants('m');
    if (lower == "als") {
        mode = RunMode::ambientLight;
        process = lightProcess(commandLine);
        process->init();
        return;
    }
    sequence = commandLine.isSet("Minimal")           ? SequenceKind::minimal
               : commandLine.isSet("FourSteps")       ? SequenceKind::fourSteps
               : commandLine.isSet("MagAccuracyTest") ? SequenceKind::magAccuracy
                                                      : SequenceKind::full;
    process = std::make_shared<NewMotionProcess>(sequence);
    process->type = mode;
    process->init();
}

void CalibrationManager::initPhysicalSensors() {
    const std::vector<Luid> luids = smhi->enumerateSensors();
    if (!commandLine.isSet("ImportXml")) {
        for (const Luid& luid : luids)
            if (auto sensor = createSensor(luid))
                physicalSensors.push_back(std::move(sensor));
        return;
    }
    physicalSensors = readCalibrationFile(commandLine.value("ImportXml"));
    std::vector<std::string> platformLuids;
    for (const Luid& luid : luids)
        platformLuids.push_back(luidToString(luid));
    matchImportedSensors(platformLuids);
}

void CalibrationManager::matchImportedSensors(const std::vector<std::string>& platformLuids) {
    for (const auto& sensor : physicalSensors) {
        const std::string text = luidToString(sensor->luid);
        const std::string shown = sensor->displayName();
        const auto matches = std::count(platformLuids.begin(), platformLuids.end(), text);
        for (auto k = matches; k > 0; --k)
            Logger::write(LogLevel::info, "CalibrationManager::initPhysicalSensors", __LINE__,
                          "found sensor " + shown);
        if (matches > 0)
            continue;
        if (shown.empty())
            throw CalibrationException(
                "A matching physical sensor was not found for writing the calibration data of " +
                text);
        throw CalibrationException("A matching " + shown +
                                   " physical sensor was not found on the platform in order to "
                                   "write the calibration data of " +
                                   text);
    }
}

CalibrationManager::DumpLocation CalibrationManager::dumpLocation() const {
    DumpLocation location{commandLine.value("UseRawData"), "dataDump"};
    if (commandLine.isSet("DumpPrefix"))
        location.prefix = commandLine.value("DumpPrefix");
    if (hasExtension(location.folder, "csv"))  // the value names a file
        location.prefix.clear();
    return location;
}

void CalibrationManager::initOfflineSensors() {
    std::vector<OfflineType> types;
    if (mode == RunMode::calibrate || mode == RunMode::test) {
        if (wantAccelerometer)
            types.push_back(offlineAccelerometer);
        if (wantGyroscope)
            types.push_back(offlineGyroscope);
        if (wantMagnetometer)
            types.push_back(offlineMagnetometer);
    } else {
        types.push_back(mode == RunMode::ambientLight ? offlineLightSensor : offlineMagnetometer);
    }
    const auto [folder, prefix] = dumpLocation();
    for (const OfflineType& type : types) {
        for (const std::uint8_t instance : {std::uint8_t{0}, std::uint8_t{1}}) {
            const std::string stem = std::string(type.stem) + (instance == 0 ? "" : "_2");
            if (CsvParser::fileExists(folder, prefix, stem))
                physicalSensors.push_back(createSensor({.SensorTypeId = type.typeId,
                                                        .InstanceId = instance,
                                                        .Flags = Luid::staticData}));
        }
    }
}

bool CalibrationManager::isCandidate(const Sensor& sensor) const {
    return (calibrating && sensor.canCalibrate() && sensor.supportsRunMode(mode)) ||
           (testing && sensor.hasStaticCalibration());
}

bool CalibrationManager::isChosen(const Sensor& sensor) const {
    return isSecond(sensor) ? !commandLine.isSet("PrimaryOnly")
                            : !commandLine.isSet("SecondaryOnly");
}

void CalibrationManager::initCalibratingSensors() {
    for (const auto& sensor : physicalSensors) {
        if (!isCandidate(*sensor))
            continue;
        const bool chosen = isChosen(*sensor);
        if (mode == RunMode::magneticTest || mode == RunMode::ambientLight) {
            const bool wanted = mode == RunMode::magneticTest
                                    ? sensor->holdsName(magnetometerName)
                                    : sensor->holdsName(lightSensorName) && chosen;
            if (wanted)
                calibratingSensors.push_back(sensor);
            continue;
        }
        if (isSecond(*sensor) && chosen && !isOffline())
            refuseSecondSensor();
        const bool isGyroscope = sensor->holdsName(gyroscopeName);
        const bool wanted = (sensor->holdsName(accelerometerName) && wantAccelerometer) ||
                            (isGyroscope && wantGyroscope) ||
                            (sensor->holdsName(magnetometerName) && wantMagnetometer);
        if (!wanted || !chosen)
            continue;
        if (isGyroscope && wantGyroscope && commandLine.isSet("NoGyroRotation"))
            sensor->setNoGyroRotation(true);
        if (commandLine.isSet("CheckVsOriginalAxis"))
            sensor->setCheckVsOriginalAxis(true);
        calibratingSensors.push_back(sensor);
    }
    if (calibratingSensors.empty())
        throw CalibrationException("No sensors to calibrate could be found");
    if (!commandLine.isSet("CalibrateOffline") && isReplay())
        checkDumpsExist();
}

void CalibrationManager::refuseSecondSensor() const {
    const std::uint8_t formFactor = smhi->getFormFactor();
    if (formFactor != Sensor::formFactor2in1 && formFactor != Sensor::formFactorMid)
        throw CalibrationException(
            "Second sensor instance for form factors other than 2in1 or MID is not supported, "
            "please check PDT form factor type. To calibrate only the primary sensor, you can use "
            "the primary sensors only option");
}

void CalibrationManager::checkDumpsExist() const {
    const auto [folder, prefix] = dumpLocation();
    for (const auto& sensor : calibratingSensors)
        if (!CsvParser::fileExists(folder, prefix, sensor->displayName()))
            throw CalibrationException("No datadump file for sensor " + sensor->displayName() +
                                       " found");
}

void CalibrationManager::pairDynamicSensors() {
    if (mode != RunMode::calibrate || sequence == SequenceKind::minimal)
        return;
    for (const auto& sensor : calibratingSensors)
        for (const auto& partner : physicalSensors)
            if (sensor != partner && partner->luid.Flags != 0 && partner->luid.VendorId == 0 &&
                sensor->luid.InstanceId == 0 && partner->luid.InstanceId == 0 &&
                partner->luid.SensorTypeId == sensor->luid.SensorTypeId)
                dynamicSensors[sensor] = partner;
}

}  // namespace tavoren
