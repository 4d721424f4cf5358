#include "control/AlsProcess.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "common/CalibrationException.h"
#include "common/SamplingException.h"
#include "common/Text.h"
#include "files/AlsConfig.h"
#include "files/CsvParser.h"
#include "frame/Console.h"
#include "frame/Logger.h"
#include "sensors/AmbientLight.h"

namespace tavoren {

namespace {

constexpr const char* controlFunction = "AlsProcess::CalibrationControl";
constexpr std::int64_t smallestStep = 300;  // lux, between two levels
constexpr std::int32_t lowestLevel = 1;     // lux
constexpr std::int32_t windowLength = 100;  // samples of the stability test
constexpr double changeOfLight = 5.0;       // lux
constexpr double stableDeviation = 1.0;     // lux
constexpr std::int32_t unstableTestsAllowed = 250;

/// No more levels fit into their range with the least step between them.
constexpr std::int64_t mostStages = std::numeric_limits<std::int32_t>::max() / smallestStep + 1;

std::int32_t typedNumber(const std::string& line) {
    try {
        return parseInteger(line);
    } catch (const CalibrationException&) {
        throw CalibrationException("Invalid number was entered");
    }
}

}  // namespace

AlsProcess::AlsProcess(bool byOperator) : interactive(byOperator) {
    type = RunMode::ambientLight;
    stepCount = 3;
    stageIndex = 0;
}

void AlsProcess::setConfigFile(std::string_view path) {
    AlsConfig config{delayTime, {}};
    CsvParser().readAlsConfig(path, config);
    delayTime = config.delayTime;
    lightLevels = std::move(config.values);
}

bool AlsProcess::isInteractive() const {
    return interactive;
}

bool AlsProcess::needsUserInput() const {
    return true;
}

std::vector<std::string> AlsProcess::getRequiredSensors() const {
    return {"AmbientLightSensor"};
}

bool AlsProcess::isStageIndicator(const Sensor& sensor) const {
    return stageSensor && sensor.luid == stageSensor->luid;
}

bool AlsProcess::addSensor(const std::shared_ptr<Sensor>& sensor) {
    stageSensor = std::dynamic_pointer_cast<AmbientLight>(sensor);
    return stageSensor != nullptr;
}

void AlsProcess::addAuxSensor(const std::shared_ptr<Sensor>& sensor) {
    if (auto lightSensor = std::dynamic_pointer_cast<AmbientLight>(sensor))
        lightSensors.push_back(std::move(lightSensor));
}

void AlsProcess::init() {
    if (interactive) {
        Console::printLine(
            "Enter the number of steps to calibrate, valid number should be bigger than 1");
        stepCount = typedNumber(Console::readLine().value_or(""));
    } else {
        stepCount = static_cast<std::int32_t>(lightLevels.size());
    }
    if (stepCount < 1 || stepCount > mostStages)
        throw CalibrationException("Invalid number of stages");
    stepLevels.assign(2 * static_cast<std::size_t>(stepCount), 0);
}

std::int32_t AlsProcess::configuredLevel() const {
    const auto step = static_cast<std::size_t>(currentStep);
    if (step >= lightLevels.size())
        throw CalibrationException("Invalid number of light values");
    return lightLevels[step];
}

std::string AlsProcess::getInstructions(bool) {
    if (interactive)
        return "Please change the light level to the next level. When done, enter the light level "
               "as read by your light meter";
    return "Please change the light level to " + std::to_string(configuredLevel()) + " lux";
}

std::string AlsProcess::readUserInput() {
    std::string text =
        interactive ? Console::readLine().value_or("") : std::to_string(configuredLevel());
    checkLevel(typedNumber(text));
    return text;
}

void AlsProcess::checkLevel(std::int32_t level) {
    if (level < lowestLevel)
        throw CalibrationException("Invalid light value " + std::to_string(level) +
                                   ". Value should be bigger than " + std::to_string(lowestLevel) +
                                   "(lux)");
    if (currentStep >= 1 && std::abs(std::int64_t{level} - lastLevel) < smallestStep)
        throw CalibrationException("Invalid delta between light levels. Minimum delta is " +
                                   std::to_string(smallestStep));
    if (currentStep == 1)
        ascending = level > lastLevel;
    if (currentStep >= 2 && (ascending ? level < lastLevel : level > lastLevel))
        throw CalibrationException(
            "Invalid delta between light levels. levels should be ascending or descending");
    lastLevel = level;
}

void AlsProcess::onSample(const SensorSample& sample) {
    CalibrationControl(sample);
}

void AlsProcess::CalibrationControl(const SensorSample& sample) {
    const double value = sample.values[0];
    if (stageIndex >= 1 && stageIndex < stepCount && !lightChanged)
        watchForChange(value);
    if (stageIndex != 0 && !lightChanged)
        return;
    stageSensor->measuredRate();  // only to keep its mean running
    ++stableCount;
    if (stableCount < windowLength)
        return;
    if (isStable()) {
        endStage(value);
        return;
    }
    ++unstableCount;
    if (unstableCount > unstableTestsAllowed)
        throw SamplingException("The light is not stable for too long time");
}

void AlsProcess::watchForChange(double value) {
    const auto before = 2 * static_cast<std::size_t>(stageIndex - 1);
    const double mean = stageSensor->meanOfSpan(stepLevels[before], stepLevels[before + 1]);
    lightChanged = std::abs(value - mean) > changeOfLight;
    if (lightChanged)
        return;
    ++waitCount;
    if (waitCount > stageSensor->measuredRate() * delayTime)
        throw SamplingException("A light level change was not detected for too long time");
}

/// Whether the newest samples are a full window without much deviation.
bool AlsProcess::isStable() const {
    const SampleBuffer& samples = stageSensor->bufferedData;
    const auto size = static_cast<std::int64_t>(samples.size());
    if (size < windowLength)
        return false;
    const double mean = stageSensor->meanOfSpan(size - windowLength, size - 1);
    double squares = 0.0;
    for (const auto* sample = samples.end() - windowLength; sample != samples.end(); ++sample)
        squares += (sample->values[0] - mean) * (sample->values[0] - mean);
    return std::sqrt(squares / windowLength) <= stableDeviation;
}

void AlsProcess::endStage(double value) {
    Logger::write(LogLevel::debug, controlFunction, __LINE__, "Can move next");
    const auto size = static_cast<std::int32_t>(stageSensor->bufferedData.size());
    const auto span = 2 * static_cast<std::size_t>(stageIndex);
    stepLevels[span] = size - windowLength + spanSkip;
    stepLevels[span + 1] = size - 1;
    ++stageIndex;
    stepReady = true;
    stableCount = 0;
    unstableCount = 0;
    waitCount = 0;
    lightChanged = false;
    if (interactive)
        for (const auto& sensor : lightSensors)
            sensor->awaitInput();
    Logger::write(LogLevel::debug, controlFunction, __LINE__,
                  "finished collecting; data is:" + formatNumber(value) + "\n");
}

void AlsProcess::finish() {
    std::size_t common = 0;
    bool shortestIsPrimary = false;
    for (const auto& sensor : lightSensors) {
        if (common != 0 && sensor->getDataSize() >= common)
            continue;
        common = sensor->getDataSize();
        shortestIsPrimary = sensor->isPrimary();
    }
    std::int32_t droppedFromPrimary = 0;
    for (const auto& sensor : lightSensors) {
        SampleBuffer& samples = sensor->bufferedData;
        const std::size_t dropped = samples.size() - std::min(samples.size(), common);
        if (dropped > 0)
            samples = SampleBuffer({samples.begin() + dropped, samples.end()});
        if (sensor->isPrimary())
            droppedFromPrimary = static_cast<std::int32_t>(dropped);
    }
    if (shortestIsPrimary)
        return;
    for (std::int32_t& index : stepLevels)
        index -= droppedFromPrimary;
}

}  // namespace tavoren
