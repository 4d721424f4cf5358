#include "control/SensorManager.h"

#include <algorithm>
#include <array>

#include "common/CalibrationException.h"
#include "common/Text.h"
#include "control/Process.h"
#include "sensors/AmbientLight.h"
#include "sensors/createSensor.h"
#include "sensors/InertialSensor.h"

namespace tavoren {

namespace {

constexpr std::array<std::string_view, 4> typeNames{"Accelerometer", "Gyroscope", "Magnetometer",
                                                    "AmbientLightSensor"};
constexpr std::uint16_t accelerometerType = 115;
constexpr const char* generalFailure = "General";

/// The type names whose primary sensor has been met.
class SeenTypes {
  public:
    bool isOffered(const Sensor& sensor) const {
        for (std::size_t i = 0; i < typeNames.size(); ++i)
            if (!seen[i] && sensor.holdsName(typeNames[i]))
                return true;
        return false;
    }
    void note(const Sensor& sensor) {
        for (std::size_t i = 0; i < typeNames.size(); ++i)
            if (sensor.displayName() == typeNames[i] && sensor.isPrimary())
                seen[i] = true;
    }

  private:
    std::array<bool, typeNames.size()> seen{};
};

/// REQUIRES: the sensor's category promises this class.
template <typename Class>
SampleBuffer calibratedBy(const std::shared_ptr<Sensor>& sensor, const SampleBuffer& samples) {
    const auto exact = std::dynamic_pointer_cast<Class>(sensor);
    if (!exact)
        throw CalibrationException("sensor is NULL.");
    return SampleBuffer(exact->calibrated(samples));
}

std::string_view failureTextOf(FailureKind kind) {
    switch (kind) {
        case FailureKind::calibration:
            return ": Check Calibration";
        case FailureKind::axisMapping:
            return ": Check Axis Mapping";
        case FailureKind::movementOrMapping:
            return ": Check Movement or Axis Mapping";
    }
    return {};
}

}  // namespace

const Process& SensorManager::runningProcess() const {
    if (!process)
        throw CalibrationException("Internal error");
    return *process;
}

void SensorManager::setSensors(std::vector<std::shared_ptr<Sensor>> list) {
    sensors = std::move(list);
    for (const auto& sensor : sensors)
        sensor->setSensorManager(*this);
}

void SensorManager::setProcess(std::shared_ptr<Process> running) {
    process = std::move(running);
    const std::vector<std::string> required = process->getRequiredSensors();
    bool registered = false;
    offerSensors(required, registered);
    if (!registered) {
        if (required.front() != "Accelerometer")
            throw CalibrationException("Could not locate sensor " + required.front() +
                                       " for sampling. " + required.front() +
                                       " is mandatory for this calibration process");
        // The sequence needs an accelerometer that the run does not calibrate.
        const auto extra = createSensor({.SensorTypeId = accelerometerType});
        extra->setSensorManager(*this);
        sensors.push_back(extra);
        process->addSensor(extra);
    }
    process->prepareSteps();
}

void SensorManager::offerSensors(const std::vector<std::string>& required, bool& registered) {
    SeenTypes seen;
    for (const auto& sensor : sensors) {
        for (const std::string& typeName : required) {
            if (!sensor->holdsName(typeName))
                continue;
            if (seen.isOffered(*sensor))
                registered = process->addSensor(sensor);
            seen.note(*sensor);
        }
        if (sensor->holdsName("AmbientLightSensor"))
            process->addAuxSensor(sensor);
    }
}

void SensorManager::setSamplingInterval(std::uint32_t interval) {
    customInterval = interval;
    customIntervalSet = true;
}

void SensorManager::setUserInput(const std::string& text) {
    for (const auto& sensor : sensors)
        sensor->userInput(text);
}

SensorDataMap SensorManager::rawData() const {
    const std::lock_guard lock(dataLock);
    return rawData_;
}

SensorDataMap SensorManager::calibratedData() {
    calibratedData_.clear();
    for (const auto& [sensor, samples] : rawData()) {
        if (sensor->category == Sensor::inertial)
            calibratedData_[sensor] = calibratedBy<InertialSensor>(sensor, samples);
        else if (sensor->category == Sensor::ambientLight)
            calibratedData_[sensor] = calibratedBy<AmbientLight>(sensor, samples);
    }
    return calibratedData_;
}

void SensorManager::addFailure(const std::string& displayName, FailureKind kind) {
    if (failures.count(generalFailure) != 0)
        return;
    if (kind == FailureKind::calibration) {
        failures.emplace(displayName, kind);
        return;
    }
    const bool second = std::any_of(failures.begin(), failures.end(), [&](const auto& entry) {
        return entry.second == FailureKind::axisMapping && entry.first != displayName;
    });
    if (second) {
        failures.clear();
        failures.emplace(generalFailure, FailureKind::movementOrMapping);
    } else {
        failures[displayName] = kind;
    }
}

std::string SensorManager::failureReport() const {
    std::string report;
    for (const auto& [displayName, kind] : failures)
        report += std::to_string(static_cast<int>(kind) + 1) + "\t" + displayName +
                  std::string(failureTextOf(kind)) + "\n";
    return report;
}

}  // namespace tavoren
