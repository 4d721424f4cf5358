#include "control/PreTestProcess.h"

#include "frame/Console.h"
#include "sensors/Sensor.h"

namespace tavoren {

PreTestProcess::PreTestProcess() {
    stepCount = 4;
    type = RunMode::magneticTest;
    segmentTimes.assign(2 * static_cast<std::size_t>(stepCount), 0.0);
}

std::string PreTestProcess::getInstructions(bool) {
    const auto step = static_cast<std::size_t>(currentStep);
    lastRotation = step + 1 == rotationAxes.size();
    const std::string text =
        step < rotationAxes.size()
            ? "Slowly rotate the device " + rotationAxes[step]
            : "Slowly move the device in a rectangle, keeping the same heading all the time";
    return text +
           (step == 0 ? "\nPress Enter to signal start and finish" : "\nPress Enter when done");
}

bool PreTestProcess::isLastRotationStage() const {
    return lastRotation;
}

bool PreTestProcess::needsUserInput() const {
    return awaitingStart;
}

std::string PreTestProcess::readUserInput() {
    Console::readCharacter();
    Console::printLine("User pressed for signal start...");
    awaitingStart = false;
    return {};
}

void PreTestProcess::onSample(const SensorSample&) {}

bool PreTestProcess::isStageIndicator(const Sensor& sensor) const {
    return magnetometer && magnetometer->luid == sensor.luid;
}

void PreTestProcess::markStepReady() {
    stepReady = true;
}

std::vector<std::string> PreTestProcess::getRequiredSensors() const {
    return {"Magnetometer"};
}

bool PreTestProcess::endsByUser() const {
    return true;
}

bool PreTestProcess::addSensor(const std::shared_ptr<Sensor>& sensor) {
    magnetometer = sensor;
    return true;
}

}  // namespace tavoren
