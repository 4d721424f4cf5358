#pragma once

#include "control/Process.h"

namespace tavoren {

/// The sequence of the magnetic environment test: three full turns and a walk in a rectangle. The
/// operator starts the first step and ends every one by hand; nothing looks at the samples while
/// they arrive.
class PreTestProcess final : public Process {
  public:
    PreTestProcess();

    std::string getInstructions(bool noEnter) override;
    /// Whether the instruction of the third turn is the last one shown.
    bool isLastRotationStage() const override;
    bool needsUserInput() const override;
    /// Waits for Enter before the first step; gives an empty text.
    std::string readUserInput() override;
    void onSample(const SensorSample& sample) override;
    bool isStageIndicator(const Sensor& sensor) const override;
    void markStepReady() override;
    std::vector<std::string> getRequiredSensors() const override;
    bool endsByUser() const override;
    bool addSensor(const std::shared_ptr<Sensor>& sensor) override;

    std::shared_ptr<Sensor> magnetometer;
    std::vector<std::string> rotationAxes{"360 degrees around X axis", "360 degrees around Y axis",
                                          "360 degrees around Z axis"};
    bool awaitingStart = true;
    bool lastRotation = false;
};

}  // namespace tavoren
