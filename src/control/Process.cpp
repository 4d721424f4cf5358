#include "control/Process.h"

namespace tavoren {

void Process::setConfigFile(std::string_view) {}

bool Process::isInteractive() const {
    return false;
}

bool Process::isLastRotationStage() const {
    return false;
}

bool Process::keepsTimeBase() const {
    return true;
}

void Process::init() {}

void Process::markStepReady() {}

bool Process::endsByUser() const {
    return false;
}

void Process::prepareSteps() {}

void Process::addAuxSensor(const std::shared_ptr<Sensor>&) {}

void Process::finish() {}

std::size_t Process::segmentStride() const {
    constexpr std::size_t fullSequenceTimes = 14;
    return segmentTimes.size() == fullSequenceTimes ? 4 : 2;
}

}  // namespace tavoren
