#pragma once

#include <cstdint>
#include <string>

namespace tavoren {

class Process;

/// How a sensor failed its test.
enum class FailureKind : std::int32_t {
    calibration = 0,
    axisMapping = 1,        ///< the sensor saw another movement than the one asked for
    movementOrMapping = 2,  ///< more than one sensor saw another movement
};

/// What a sensor sees of the manager that drives its run.
class SensorRun {
  public:
    /// The running sequence; throws `CalibrationException` when there is none.
    virtual const Process& runningProcess() const = 0;
    /// Enters a sensor into the table of failed sensors.
    virtual void addFailure(const std::string& displayName, FailureKind kind) = 0;

  protected:
    SensorRun() = default;
    SensorRun(const SensorRun&) = default;
    SensorRun& operator=(const SensorRun&) = default;
    ~SensorRun() = default;
};

}  // namespace tavoren
