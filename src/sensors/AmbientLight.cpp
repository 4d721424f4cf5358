#include "sensors/AmbientLight.h"

#include <algorithm>

#include "common/CalibrationException.h"
#include "common/Text.h"
#include "control/Process.h"
#include "frame/Logger.h"
#include "frame/LogScope.h"
#include "numerics/Statistics.h"
#include "sensors/LightRecord.h"
#include "sensors/SensorRun.h"

namespace tavoren {

namespace {

constexpr std::size_t medianLength = 3;
constexpr double defaultRate = 50.0;  // samples per second
constexpr double msPerSecond = 1000.0;

double middleOf(const std::vector<double>& three) {
    const auto [low, high] = std::minmax(three[0], three[1], nanLast);
    return std::max(low, std::min(high, three[2], nanLast), nanLast);
}

}  // namespace

AmbientLight::AmbientLight(const Luid& id) : Sensor(id) {
    category = ambientLight;
    name = "AmbientLightSensor";
    calibratable = true;
    valueCount = 1;
    dataUnit = Unit::lux;
    firmwareUnit = Unit::lux;
    rawDivisor = 1000;
    formatId = 1;
    minDataSize = LightRecord::sizeFor(LightRecord::fewestSteps);
    maxDataSize = LightRecord::sizeFor(LightRecord::mostSteps);
}

bool AmbientLight::isLightSensor() const {
    return true;
}

bool AmbientLight::supportsRunMode(RunMode mode) const {
    return mode == RunMode::ambientLight;
}

bool AmbientLight::dataRecieved(const SensorSample& sample) {
    if (lastSampleTime > 0.0)
        sampleIntervals.push_back(sample.time - lastSampleTime);
    lastSampleTime = sample.time;
    const double value = sample.values[0];  // 0.0 in a sample without values
    if (sensorManager->runningProcess().isInteractive() && isWaitingForInput(value))
        return false;
    recentValues.push_back(value);
    if (recentValues.size() > medianLength)
        recentValues.erase(recentValues.begin());
    if (recentValues.size() < medianLength)
        return false;
    bufferedData.append({sample.time, {middleOf(recentValues)}});
    return true;
}

bool AmbientLight::isWaitingForInput(double value) {
    const std::scoped_lock lock(inputLock);
    if (newInput) {
        newInput = false;
        Logger::write(LogLevel::debug, "AmbientLight::dataRecieved", __LINE__,
                      "next input received; data is:" + formatNumber(value) + "\n");
        waitForInput = false;
    }
    return waitForInput;
}

void AmbientLight::userInput(const std::string& text) {
    const std::scoped_lock lock(inputLock);
    addLightLevel(parseInteger(text));
    newInput = true;
}

void AmbientLight::addLightLevel(std::int32_t level) {
    lightLevels.push_back(level);
}

void AmbientLight::awaitInput() {
    const std::scoped_lock lock(inputLock);
    waitForInput = true;
}

double AmbientLight::measuredRate() {
    if (sampleIntervals.empty()) {
        meanInterval = 0.0;
        return defaultRate;
    }
    const auto n = static_cast<double>(sampleIntervals.size());
    meanInterval = ((n - 1) * meanInterval + sampleIntervals.back()) / n;
    return msPerSecond / meanInterval;
}

double AmbientLight::meanOfSpan(std::int64_t first, std::int64_t last) const {
    if (first < 0 || last < first || last >= static_cast<std::int64_t>(bufferedData.size()))
        throw CalibrationException("Internal error");
    double sum = 0.0;
    for (std::int64_t i = first; i <= last; ++i)
        sum += bufferedData[static_cast<std::size_t>(i)].values[0];
    return sum / static_cast<double>(last - first + 1);
}

void AmbientLight::calcReverseSdt() {
    constexpr const char* function = "AmbientLight::calcReverseSdt";
    const LogScope scope(function, __LINE__, LogScope::Form::entered);
    if (firmwareData.empty()) {
        Logger::write(
            LogLevel::error, function, __LINE__,
            "Calibration exception was thrown from calcReverseSdt, originalScaling is empty");
        throw CalibrationException(
            "No calibration entry exists for AmbientLight. Original entry must exist");
    }
    if (isCustomFormat(firmwareData.front())) {
        Logger::write(
            LogLevel::error, function, __LINE__,
            "Calibration exception was thrown from calcReverseSdt, format_id is bigger than 127");
        throw CalibrationException(
            "Custom calibration data format. Cannot reverse SDT static calibration");
    }
    const double m = LightRecord::multiplier(firmwareData);
    if (m == 0.0)
        return;
    const double d = std::max<double>(LightRecord::divider(firmwareData), 1.0);
    reverseScale = 1.0 / (m / d);
}

void AmbientLight::reverseStaticCalibration(SensorSample& sample) const {
    if (reverseScale == 1.0)
        return;
    SampleValues raw;
    for (const double value : sample.values)
        raw.push_back(value * reverseScale);
    sample.values = raw;
}

}  // namespace tavoren
