#include <cmath>

#include "common/CalibrationException.h"
#include "common/Text.h"
#include "common/Utf8.h"
#include "control/Process.h"
#include "frame/Console.h"
#include "frame/Logger.h"
#include "sensors/AmbientLight.h"
#include "sensors/LightRecord.h"
#include "sensors/SensorRun.h"

namespace tavoren {

namespace {

constexpr double largestMultiplier = 200.0;
constexpr double resultDivider = 100.0;  // the factor is kept to two decimal places

[[noreturn]] void refuseMultiplier(double m) {
    throw CalibrationException("Invalid multiplier " + formatNumber(m) + " was calculated");
}

}  // namespace

void AmbientLight::calibrate() {
    multiplier = 0.0;
    double sum = 0.0;
    for (std::size_t stage = 0; stage < lightLevels.size(); ++stage)
        sum += levelMultiplier(stage);
    const double mean = sum / static_cast<double>(lightLevels.size());
    if (!(mean >= 0.0))  // negative, or no number: no levels
        refuseMultiplier(mean);
    divider = resultDivider;
    multiplier = std::trunc(mean * divider);
    logValue(multiplier / divider, L"AverageMultiplier",
             L"Calculated average multiplier. This is the scale the sensor data will be multiplied "
             L"by. The scale is a floating number is represented by multiplier/divider");
    logValue(multiplier, L"ResultMultiplier", L"Calculated result multiplier");
    logValue(divider, L"ResultDivider", L"Calculated result divider");
    calibrationData = resultRecord();
    setLogAttribute(L"Success", L"true");
}

/// The factor between the level of a stage and what the sensor measured in it.
double AmbientLight::levelMultiplier(std::size_t stage) {
    const std::vector<std::int32_t>& spans = sensorManager->runningProcess().stepLevels;
    if (2 * stage + 1 >= spans.size())
        throw CalibrationException("Internal error");
    const double average = meanOfSpan(spans[2 * stage], spans[2 * stage + 1]);
    Logger::write(LogLevel::debug, "AmbientLight::calibrate", __LINE__,
                  "avg is " + formatNumber(average));
    const std::int32_t level = lightLevels[stage];
    const std::wstring levelText = std::to_wstring(level);
    const auto log = [&](std::wstring_view values, std::wstring_view measured) {
        logTest(L"Multiplier", values, L"Calculated multiplier for light level " + levelText,
                {{L"MeasuredAverage", measured}, {L"ExpectedAverage", levelText}});
    };
    if (average == 0.0) {
        log({}, L"0");
        throw CalibrationException("Invalid light level of 0 was measured");
    }
    const double m = level / average;
    const std::string text = formatNumber(m);
    Console::printLine("Stage " + std::to_string(stage + 1) + " multiplier is " + text);
    log(widen(text), widen(formatNumber(average)));
    if (m > largestMultiplier)
        refuseMultiplier(m);
    return m;
}

std::string AmbientLight::resultText() const {
    return "Multiplier: " + formatNumber(multiplier) + "\nDivider: " + formatNumber(divider) +
           "\nMultiplier/Divider: " + formatNumber(multiplier / divider) + "\n";
}

std::vector<SensorSample> AmbientLight::calibrated(std::span<const SensorSample> samples) const {
    const double reciprocal = 1.0 / divider;
    std::vector<SensorSample> result;
    result.reserve(samples.size());
    for (const SensorSample& sample : samples) {
        SensorSample& scaled = result.emplace_back(SensorSample{sample.time, {}});
        for (const double value : sample.values)
            scaled.values.push_back(value * multiplier * reciprocal);
    }
    return result;
}

}  // namespace tavoren
