#include "control/NewMotionProcess.h"

#include <algorithm>
#include <array>
#include <span>

#include "common/CalibrationException.h"
#include "frame/Console.h"

namespace tavoren {

namespace {

constexpr double segmentLength = 1000.0;       // ms, the stability window
constexpr double oneStepLength = 1000.0;       // ms, the whole of the minimal sequence
constexpr double shortestTransition = 1000.0;  // ms

struct StepTexts {
    std::int32_t stepCount;
    std::vector<std::string> positions;
    std::vector<std::string> rotations;
};

StepTexts stepTexts(SequenceKind sequence, bool withMagnetometer) {
    switch (sequence) {
        case SequenceKind::full:
            return {7,
                    {},
                    {"Z axis directed UP, Y axis directed to North",
                     "360 degrees counterclockwise around Z axis",
                     "Y axis directed UP, Z axis directed to South",
                     "360 degrees counterclockwise around Y axis",
                     "X axis directed UP, Z axis directed to South",
                     "360 degrees counterclockwise around X axis",
                     "Y axis directed DOWN, Z axis directed to South"}};
        case SequenceKind::minimal:
            return {1,
                    {withMagnetometer ? "Z axis directed UP, Y axis directed to North"
                                      : "Z axis directed UP"},
                    {}};
        case SequenceKind::fourSteps:
            return {4,
                    {"Z axis directed UP", "X axis directed DOWN", "Y axis directed UP",
                     "Z axis is directed UP; device turned 90 degrees vs. initial state"},
                    {"90 degrees counterclockwise around Y axis",
                     "90 degrees counterclockwise around Z axis",
                     "90 degrees clockwise around X axis"}};
        case SequenceKind::magAccuracy:
            return {4,
                    {"Z axis directed UP, Y axis directed to North",
                     "Z axis directed UP, Y axis directed to West",
                     "Z axis directed UP, Y axis directed to South",
                     "Z axis directed UP, Y axis directed to East"},
                    {"90 degrees counterclockwise around Z axis",
                     "90 degrees counterclockwise around Z axis",
                     "90 degrees counterclockwise around Z axis"}};
        case SequenceKind::accelerometerOnly:
            return {4,
                    {},
                    {"Z axis directed UP, Y axis directed to North",
                     "Y axis directed UP, Z axis directed to South",
                     "X axis directed UP, Z axis directed to South",
                     "Y axis directed DOWN, Z axis directed to South"}};
    }
    return {0, {}, {}};
}

}  // namespace

NewMotionProcess::NewMotionProcess(SequenceKind kind) {
    sequence = kind;
}

bool NewMotionProcess::addSensor(const std::shared_ptr<Sensor>& sensor) {
    const auto inertial = std::dynamic_pointer_cast<InertialSensor>(sensor);
    if (inertial && sensor->holdsName("Accelerometer"))
        accelerometer = inertial;
    else if (inertial && sensor->holdsName("Gyroscope"))
        gyroscope = inertial;
    else if (inertial && sensor->holdsName("Magnetometer"))
        magnetometer = inertial;
    else
        throw CalibrationException(sensor->displayName() + " is invalid type of stageIndicator");
    if (sequence == SequenceKind::minimal)
        return true;
    return sequence == SequenceKind::magAccuracy ? magnetometer != nullptr
                                                 : accelerometer != nullptr;
}

void NewMotionProcess::prepareSteps() {
    if (sequence == SequenceKind::full && accelerometer && !gyroscope && !magnetometer)
        sequence = SequenceKind::accelerometerOnly;
    StepTexts texts = stepTexts(sequence, magnetometer != nullptr);
    stepCount = texts.stepCount;
    positionTexts = std::move(texts.positions);
    rotationTexts = std::move(texts.rotations);
    segmentTimes.assign(2 * static_cast<std::size_t>(stepCount), 0.0);
}

/// Whether every step ends at rest in a position, without steps that are turns.
bool NewMotionProcess::stepsArePositions() const {
    return sequence == SequenceKind::fourSteps || sequence == SequenceKind::magAccuracy ||
           sequence == SequenceKind::accelerometerOnly;
}

std::string NewMotionProcess::getInstructions(bool noEnter) {
    const auto step = static_cast<std::size_t>(currentStep);
    const std::string place = "Place the device screen's ";
    const std::string rotate = "Slowly, rotate the device ";
    std::string text =
        "Step " + std::to_string(currentStep + 1) + " out of " + std::to_string(stepCount) + ".\n";
    if (sequence == SequenceKind::full || sequence == SequenceKind::accelerometerOnly) {
        const bool placed = sequence == SequenceKind::accelerometerOnly || currentStep % 2 == 0;
        text += (placed ? place : rotate) + rotationTexts.at(step);
    } else if (currentStep == 0) {
        text += place + positionTexts.at(0);
    } else {
        text += rotate + rotationTexts.at(step - 1) + "\nAt the end of this stage, the device's " +
                positionTexts.at(step);
    }
    text += "\nHold system in current position";
    if (currentStep == 0) {
        text += "\nNOTE:\nDevice should be placed in tablet mode, screen facing up";
        text += noEnter ? "\n" : "\nPress Enter when done";
    }
    return text;
}

bool NewMotionProcess::needsUserInput() const {
    return currentStep == 0;
}

std::string NewMotionProcess::readUserInput() {
    if (currentStep != 0)
        throw CalibrationException("Internal error");
    Console::readCharacter();
    return {};
}

std::vector<std::string> NewMotionProcess::getRequiredSensors() const {
    return {"Accelerometer", "Gyroscope", "Magnetometer"};
}

bool NewMotionProcess::isStageIndicator(const Sensor& sensor) const {
    const auto is = [&sensor](const std::shared_ptr<InertialSensor>& own) {
        return own && own->luid == sensor.luid;
    };
    return is(accelerometer) || is(magnetometer) || is(gyroscope);
}

void NewMotionProcess::onSample(const SensorSample& sample) {
    const double time = sample.time;
    if (stageIndex == stepCount)
        return;
    if (sequence == SequenceKind::minimal) {
        if (time - lastTransition >= oneStepLength) {
            stepReady = true;
            stageIndex += 2;  // from -1 to the one step there is
        }
        return;
    }
    if (firstSample) {
        firstSample = false;
        stageIndex = 0;
        state = stepsArePositions() ? State::restingAfterMovement : State::restingAtPosition;
    }
    if (time - lastTransition < settleWait + shortestTransition)
        return;
    actOnState(time);
}

void NewMotionProcess::actOnState(double time) {
    switch (state) {
        case State::restingAtPosition:
            if (!hasSettled())
                return;
            endStep(time);
            if (gyroscope)
                gyroscope->captureRestRate();
            settleWait = 0.0;
            lastTransition = time;
            state = State::rotating;
            break;
        case State::rotating:
            checkRotation(time);
            break;
        case State::restingAfterMovement:
            if (!hasSettled())
                return;
            endStep(time);
            rememberPosition();
            state = State::waitingToLeave;
            break;
        case State::waitingToLeave:
            if (!hasLeftPosition())
                return;
            lastTransition = time;
            state = stepsArePositions() ? State::restingAfterMovement : State::restingAtPosition;
            break;
    }
}

bool NewMotionProcess::hasSettled() {
    const bool adapt = stageIndex == 0;
    if (accelerometer && !accelerometer->hasSettled(adapt))
        return false;
    if (gyroscope)
        return gyroscope->hasSettled(adapt);
    return !magnetometer || magnetometer->hasSettled(adapt);
}

void NewMotionProcess::checkRotation(double time) {
    if (time - lastRotationCheck < static_cast<double>(rotationCheckPeriod))
        return;
    lastRotationCheck = time;
    const bool done = gyroscope      ? gyroscope->isRotationDone(0.0)
                      : magnetometer ? magnetometer->isRotationDone(lastTransition)
                                     : false;
    if (!done)
        return;
    lastTransition = time;
    state = State::restingAfterMovement;
}

void NewMotionProcess::rememberPosition() {
    for (const auto& sensor : {accelerometer, gyroscope, magnetometer})
        if (sensor)
            sensor->setReference(sensor->recentMedian());
}

bool NewMotionProcess::hasLeftPosition() const {
    const auto& sensor = sequence == SequenceKind::magAccuracy ? magnetometer : accelerometer;
    return sensor && sensor->hasMovedFromReference();
}

void NewMotionProcess::endStep(double time) {
    const auto start = 2 * static_cast<std::size_t>(stageIndex);
    segmentTimes[start] = time - segmentLength;
    segmentTimes[start + 1] = time;
    ++stageIndex;
    lastTransition = time;
    stepReady = true;
    if (stageIndex == stepCount)
        finishSegments();
}

/// Widens the rest positions, now that the whole buffer exists.
void NewMotionProcess::finishSegments() {
    const std::size_t count = segmentTimes.size();
    for (std::size_t j = 1; j < count; j += segmentStride()) {
        segmentTimes[j] += stableTimeAfter(segmentTimes[j]);
        if (j + 1 < count && segmentTimes[j] > segmentTimes[j + 1])
            throw CalibrationException("segmentation error");
    }
}

double NewMotionProcess::stableTimeAfter(double time) const {
    const double ofAccelerometer = accelerometer ? accelerometer->stableTimeAfter(time) : 0.0;
    const auto& other = gyroscope ? gyroscope : magnetometer;
    const double ofOther = other ? other->stableTimeAfter(time) : ofAccelerometer;
    return accelerometer ? std::min(ofAccelerometer, ofOther) : ofOther;
}

}  // namespace tavoren
