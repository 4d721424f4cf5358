#pragma once

#include "control/Process.h"
#include "sensors/InertialSensor.h"

namespace tavoren {

/// The sequence of the motion sensors. It tells from the samples when the device has come to rest,
/// when a turn is complete and when the operator has left a position, and cuts the run into time
/// segments.
class NewMotionProcess final : public Process {
  public:
    explicit NewMotionProcess(SequenceKind kind);

    std::string getInstructions(bool noEnter) override;
    bool needsUserInput() const override;
    /// Waits for Enter before the first step; throws `CalibrationException` for any other.
    std::string readUserInput() override;
    /// Throws `CalibrationException` "segmentation error" when segments overlap in the end.
    void onSample(const SensorSample& sample) override;
    bool isStageIndicator(const Sensor& sensor) const override;
    std::vector<std::string> getRequiredSensors() const override;
    /// Throws `CalibrationException` for a sensor that is no motion sensor.
    bool addSensor(const std::shared_ptr<Sensor>& sensor) override;
    void prepareSteps() override;

    std::shared_ptr<InertialSensor> accelerometer;
    std::shared_ptr<InertialSensor> gyroscope;
    std::shared_ptr<InertialSensor> magnetometer;
    std::vector<std::string> positionTexts;  ///< what the device shows at the end of a step
    std::vector<std::string> rotationTexts;  ///< whole steps, or the movements between positions

    enum class State : std::int32_t {
        restingAtPosition = 0,
        rotating = 1,
        restingAfterMovement = 2,
        waitingToLeave = 3,
    };
    State state = State::restingAtPosition;
    double lastTransition = 0.0;     ///< ms of sample time
    double settleWait = 100.0;       ///< ms; extra time before the next state is tested
    double lastRotationCheck = 0.0;  ///< ms of sample time
    bool firstSample = true;
    std::uint64_t rotationCheckPeriod = 1;  ///< ms

  private:
    bool stepsArePositions() const;
    bool hasSettled();
    void actOnState(double time);
    void checkRotation(double time);
    void rememberPosition();
    bool hasLeftPosition() const;
    void endStep(double time);
    void finishSegments();
    double stableTimeAfter(double time) const;
};

}  // namespace tavoren
