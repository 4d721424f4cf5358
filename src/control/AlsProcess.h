#pragma once

#include "control/Process.h"

namespace tavoren {

class AmbientLight;

/// The sequence of an ambient light run: one stage per light level. It tells from the samples when
/// the light has changed and when it has become stable, and marks the stable span of each stage in
/// `stepLevels`: first and last index into the samples of `stageSensor`.
///
/// Waits are counted in samples, by the rate that the sensor measures; no clock is asked.
class AlsProcess final : public Process {
  public:
    /// Without `interactive` the levels come from a configuration file, else from the operator.
    explicit AlsProcess(bool interactive);

    /// Reads levels and waiting time; throws `CalibrationException` for every fault of the file.
    void setConfigFile(std::string_view path) override;
    /// Throws `CalibrationException` when the file has no level for the current step.
    std::string getInstructions(bool noEnter) override;
    bool isInteractive() const override;
    bool needsUserInput() const override;
    /// The text of the current step's level, in an interactive run as typed. Throws
    /// `CalibrationException` for a level that does not fit those before.
    std::string readUserInput() override;
    /// Fixes the number of stages, which an interactive run asks for; throws
    /// `CalibrationException` for one that cannot be.
    void init() override;
    void onSample(const SensorSample& sample) override;
    bool isStageIndicator(const Sensor& sensor) const override;
    std::vector<std::string> getRequiredSensors() const override;
    bool addSensor(const std::shared_ptr<Sensor>& sensor) override;
    void addAuxSensor(const std::shared_ptr<Sensor>& sensor) override;
    /// Cuts the samples of all sensors to the same length, at their old end, and moves the spans
    /// along.
    void finish() override;

    /// Follows the light through one stored sample, given as it was received. Throws
    /// `SamplingException` when the light does not change or does not become stable.
    void CalibrationControl(const SensorSample& sample);

    std::shared_ptr<AmbientLight> stageSensor;  ///< its samples steer the stages
    std::int32_t delayTime = 5;                 ///< seconds to wait for a change of light
    std::vector<std::int32_t> lightLevels;      ///< of the configuration file, lux
    std::int32_t lastLevel = 0;                 ///< of the stage before, lux
    bool ascending = false;                     ///< direction of the levels, set by the second one
    const bool interactive;
    std::int32_t stableCount = 0;    ///< samples looked at in this stage
    std::int32_t unstableCount = 0;  ///< stability tests failed in this stage
    std::int32_t waitCount = 0;      ///< samples seen without a change of light
    std::int32_t spanSkip = 20;      ///< samples left out at the old end of a span
    bool lightChanged = false;       ///< the light has left the level of the stage before
    std::vector<std::shared_ptr<AmbientLight>> lightSensors;  ///< all sensors of the run

  private:
    std::int32_t configuredLevel() const;
    void checkLevel(std::int32_t level);
    void watchForChange(double value);
    bool isStable() const;
    void endStage(double value);
};

}  // namespace tavoren
