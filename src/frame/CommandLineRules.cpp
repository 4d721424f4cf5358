#include <algorithm>
#include <array>
#include <span>

#include "common/CmdLineException.h"
#include "common/Extension.h"
#include "common/Text.h"
#include "frame/CommandLine.h"

namespace tavoren {

/// What the sensors text of a command asks for. The letters are looked for anywhere in the text, so
/// that "motion" holds an m, which is meant.
struct SensorLetters {
    explicit SensorLetters(const std::string& text);

    std::size_t count() const {
        return static_cast<std::size_t>(hasA) + static_cast<std::size_t>(hasG) +
               static_cast<std::size_t>(hasM);
    }

    bool isAls;
    bool hasA;
    bool hasG;
    bool hasM;
    bool isMotion;
    bool isAgm;
    std::size_t length;
};

SensorLetters::SensorLetters(const std::string& text)
    : isAls(text == "ALS" || text == "als"),
      hasA(toLower(text).find('a') != std::string::npos),
      hasG(toLower(text).find('g') != std::string::npos),
      hasM(toLower(text).find('m') != std::string::npos),
      isMotion(text == "motion"),
      isAgm(hasG || hasM || isMotion || (hasA && !isAls)),
      length(text.size()) {}

namespace {

constexpr std::array<std::string_view, 1> xmlExtension{"xml"};
constexpr std::array<std::string_view, 2> configExtensions{"txt", "csv"};

struct ExtensionRule {
    std::string_view option;
    std::span<const std::string_view> extensions;
};

constexpr std::array extensionRules{
    ExtensionRule{"ImportXml", xmlExtension},
    ExtensionRule{"Auto", configExtensions},
    ExtensionRule{"ExportXml", xmlExtension},
};

constexpr std::string_view invalidSensors =
    "Invalid value for calibrate command. Valid values are AGM(can be partial) and ALS";

void refuseIf(bool condition, std::string_view text) {
    if (condition)
        throw CmdLineException(std::string(text));
}

[[noreturn]] void refuseCombination(std::string_view first, std::string_view second) {
    throw CmdLineException("Invalid combination of commands. The " + std::string(first) +
                           " argument cannot be used together with " + std::string(second));
}

void checkExtension(const std::string& value, std::span<const std::string_view> extensions) {
    std::string list;
    for (const auto extension : extensions) {
        if (hasExtension(value, extension))
            return;
        list += (list.empty() ? "" : ", or ") + std::string(extension);
    }
    throw CmdLineException("Invalid extension for file " + value + ". Valid extension is only " +
                           list);
}

}  // namespace

void CommandLine::checkExtensions() const {
    for (const auto& rule : extensionRules) {
        if (isSet(rule.option))
            checkExtension(value(rule.option), rule.extensions);
    }
}

void CommandLine::checkMandatory() const {
    for (const auto& option : table)
        refuseIf(option.mandatory && !isSet(option.name),
                 "The mandatory argument: '" + std::string(option.name) + "' is not specified");
}

void CommandLine::checkCombinations() const {
    bool hasCommand = false;
    for (const auto& first : given) {
        if (!first.isCommand)
            continue;
        hasCommand = true;
        for (const auto& second : given) {
            if (&first != &second && (first.groups & second.groups) == 0)
                refuseCombination(first.name, second.name);
        }
    }
    refuseIf(!hasCommand, "No command was specified");
}

void CommandLine::checkRules() const {
    checkCommands();
    checkSequences();
    checkNoEnter();
    refuseIf((isSet("Calibrate") || isSet("CalibrateOffline")) && isSet("TestCalibration"),
             "Two contradicting processes asked for");
    checkSensors();
    checkReplayOptions();
}

void CommandLine::checkCommands() const {
    refuseIf(isSet("Calibrate") && !isSet("ExportAllFiles") && !isSet("UpdateTVN"),
             "Missing export or update command");
    if (isSet("CalibrateOffline")) {
        refuseIf(!isSet("UseRawData"), "Missing sensors data source");
        refuseIf(!isSet("ExportAllFiles"), "Missing export command");
    }
    if (isSet("ExportResult")) {
        refuseIf(!isSet("ExportAllFiles"),
                 "-ExportResult argument can only be used together with -ExportAllFiles");
        refuseIf(!isSet("Calibrate") && !isSet("CalibrateOffline"),
                 "-ExportResult argument can only be used together with -Calibrate or "
                 "-CalibrateOffline");
    }
    refuseIf(isSet("TestCalibration") && !isSet("FourSteps") && !isSet("Minimal") &&
                 !isSet("MagAccuracyTest"),
             "Need to type -FourSteps or -Minimal");
}

void CommandLine::checkSequences() const {
    refuseIf(isSet("Minimal") && isSet("FourSteps"),
             "Two contradicting movement sequences asked for");
    refuseIf(isSet("CheckVsOriginalAxis") && !isSet("FourSteps"),
             "CheckVsOriginalAxis: this option is supported only for FourSteps calibration");
    if (!isSet("TestCalibration") && isSet("Minimal") && isSet("UseRawData"))
        refuseCombination("UseRawData", "Minimal");
    if (isSet("ExportXml") && isSet("ImportXml"))
        refuseCombination("ExportXml", "ImportXml");
}

void CommandLine::checkNoEnter() const {
    if (!isSet("NoEnter"))
        return;
    refuseIf(!isSet("Minimal") && isSet("TestCalibration"),
             "Currently -NoEnter option is supported only for Face Up testing");
    const std::string wait = value("NoEnter");
    refuseIf(wait.empty(),
             "Currently -NoEnter should come with non empty integer argument representing "
             "milliseconds to wait");
    refuseIf(leadingInteger(wait) <= 0,
             "Currently -NoEnter should come with positive integer argument representing "
             "milliseconds to wait");
}

std::string CommandLine::sensorsText() const {
    for (const std::string_view name : {"TestCalibration", "CalibrateOffline", "Calibrate"}) {
        if (isSet(name))
            return value(name);
    }
    return {};
}

void CommandLine::checkSensors() const {
    if (!isSet("Calibrate") && !isSet("CalibrateOffline") && !isSet("TestCalibration"))
        return;
    const SensorLetters sensors(sensorsText());
    refuseIf(sensors.isAgm && !sensors.isMotion && sensors.length != sensors.count(),
             invalidSensors);
    checkCalibratedSensors(sensors);
    checkTestedSensors(sensors);
    const bool shortened = isSet("Minimal") || isSet("FourSteps");
    refuseIf(isSet("NoGyroRotation") && (!sensors.hasG || shortened),
             "Only if you perform full calibration of gyroscope, you can use the NoGyroRotation "
             "command");
    checkAmbientLight(sensors);
}

void CommandLine::checkCalibratedSensors(const SensorLetters& sensors) const {
    if (!isSet("Calibrate") || !sensors.hasM)
        return;
    refuseIf(isSet("FourSteps"), "Only A, G can be calibrated with this flow");
    refuseIf(isSet("Minimal"), "Magnetometer is not applied to 1 step calibration");
}

void CommandLine::checkTestedSensors(const SensorLetters& sensors) const {
    if (!isSet("TestCalibration"))
        return;
    refuseIf(sensors.hasM && (isSet("Minimal") || isSet("FourSteps")),
             "Only A, G can be tested with this flow");
    refuseIf(isSet("MagAccuracyTest") && (sensors.hasA || sensors.hasG),
             "Only M can be tested with this flow");
    refuseIf(!sensors.isAgm,
             "Invalid value for test command. Valid values are AGM(can be partial)");
}

void CommandLine::checkAmbientLight(const SensorLetters& sensors) const {
    if (sensors.isAls) {
        refuseIf(isSet("Minimal") || isSet("FourSteps"),
                 "These options are only for motion sensors: Minimal, Foursteps");
        refuseIf(isSet("CalibrateOffline") && !isSet("Auto"),
                 "If ALS runs offline light levels file must be supplied");
    }
    refuseIf(!sensors.isAgm && !sensors.isAls, invalidSensors);
    if (sensors.isAgm) {
        refuseIf(isSet("Auto"),
                 "Invalid automatic calibration argument, automatic calibration parameter is "
                 "applicable only for Ambient Light sensor calibration");
        return;
    }
    refuseIf(isSet("CheckVsOriginalAxis"),
             "Invalid calibration argument, checking vs. original Axis Mapping is not relevant for "
             "ALS calibration");
    refuseIf(isSet("UseRawData") && !isSet("Auto"),
             "Invalid calibration argument, automatic calibration parameter is required when "
             "loading a data dump");
}

void CommandLine::checkReplayOptions() const {
    refuseIf(isSet("DumpPrefix") && !isSet("UseRawData"),
             "Invalid calibration argument, data dump prefix can come only when loading a data "
             "dump");
    refuseIf(isSet("PrimaryOnly") && isSet("SecondaryOnly"),
             "Invalid calibration argument, -PrimaryOnly and -SecondaryOnly ought to be exclusive");
    refuseIf(isSet("SamplingInterval") && (isSet("CalibrateOffline") || isSet("UseRawData")),
             "Invalid calibration argument, -SamplingInterval is not applied for offline "
             "calibration.");
}

}  // namespace tavoren
