#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/GuardedBy.h"
#include "firmware/SampleReceiver.h"
#include "platform/TimeLimits.h"
#include "sensors/SensorDataMap.h"
#include "sensors/SensorRun.h"

namespace tavoren {

class Process;

/// Stands between the sensors and the sequence: takes live samples in on the recording worker, or
/// plays recorded ones on the main thread, and lets the main thread wait for the end of a step.
class SensorManager final : public SensorRun, public SampleReceiver {
  public:
    SensorManager() = default;
    SensorManager(const SensorManager&) = delete;
    SensorManager& operator=(const SensorManager&) = delete;
    /// Ends a recording that still delivers here.
    ~SensorManager();

    const Process& runningProcess() const override;
    void addFailure(const std::string& displayName, FailureKind kind) override;

    void setSensors(std::vector<std::shared_ptr<Sensor>> list);
    /// Offers the sensors to the sequence; throws `CalibrationException` when the one that it
    /// cannot do without is missing.
    void setProcess(std::shared_ptr<Process> running);
    /// The report interval to ask of the firmware, in ms.
    void setSamplingInterval(std::uint32_t interval);
    /// Prepares live sampling: addresses, the undoing of the firmware's calibration, the interval.
    void configureSampling();
    /// Throws `CalibrationException` when the link fails.
    void startSampling();
    /// Blocks until the step has ended; throws `CalibrationException` for a failed step.
    void waitForStepFinish(bool lastRotation);
    void stopSampling();
    void setUserInput(const std::string& text);

    /// Reads the sensors' dumps; `offline` takes over the LUIDs of the files. Throws
    /// `CalibrationException` at the first fault.
    void loadDump(std::string_view folder, std::string_view prefix, bool offline);
    /// Plays the loaded samples in the order of their times; throws `CalibrationException` when
    /// they end before the sequence does.
    void playData();

    SensorDataMap rawData() const;
    /// The stored samples under the new calibration, in the axes of the device.
    SensorDataMap calibratedData();
    std::shared_ptr<Sensor> findSensor(std::uint64_t luid) const override;
    std::int32_t rawDivisorOf(const Sensor& sensor) const override;
    /// One sample (ms) of the firmware, on the recording worker.
    void handleData(const std::shared_ptr<Sensor>& sensor, double time,
                    std::span<const double> values) override;
    /// A stage has ended, well or not; wakes the main thread.
    void stageDone(bool status) override;
    /// One line for each failed sensor, in the order of their names.
    std::string failureReport() const;

    /// How long a step may take; shortened by tests.
    std::chrono::milliseconds stageTimeLimit = stageLimit;
    /// Live samples kept of one sensor: over an hour at 1 ms. Lowered by tests.
    std::size_t mostSamples = std::size_t{1} << 22;

    std::vector<std::shared_ptr<Sensor>> sensors;
    std::map<std::string, std::shared_ptr<Sensor>> sensorsByLuid;

  private:
    void offerSensors(const std::vector<std::string>& required, bool& registered);
    void askReportInterval();
    void noteReady(const Sensor& sensor, double time);
    void takeSample(const std::shared_ptr<Sensor>& sensor, const SensorSample& sample);
    void failStage(const std::string& text);
    void endStage(bool status, const std::string& text);
    bool stopRecording();
    void stepFinished();
    bool takeStepReady(const Sensor& sensor);
    void waitForWorker() TAVOREN_REQUIRES(stageLock);
    void endStepByUser(bool lastRotation);
    std::size_t storedSamples(const std::shared_ptr<Sensor>& sensor) const;
    void checkMovement(Sensor& indicator);
    void playSample(const std::shared_ptr<Sensor>& chosen, const SensorSample& sample,
                    bool& aborted);

    SensorDataMap rawData_ TAVOREN_GUARDED_BY(dataLock);
    SensorDataMap calibratedData_;
    std::condition_variable_any stageCondition;
    std::mutex stageLock;         ///< over the process-wide `stageFinished` as well
    mutable std::mutex dataLock;  ///< over the sensors' buffers and the process as well
    bool stageSuccess TAVOREN_GUARDED_BY(stageLock) = false;
    bool stopped = false;                    ///< the last step has ended
    std::vector<std::int32_t> stageIndices;  ///< samples at the end of each operator-ended step
    std::shared_ptr<Process> process;
    double baseTime = 0.0;             ///< ms, the origin of the stored times
    std::uint32_t reportInterval = 0;  ///< ms
    /// What a failed stage raises: the text of the last failure that had one.
    std::string failureText TAVOREN_GUARDED_BY(stageLock);
    std::map<std::string, FailureKind> failures;
    bool allReady = false;  ///< every sensor has delivered a sample
    bool baseTimeSet = false;
    double firstSampleTime = 0.0;      ///< ms; 0.0 means none so far
    std::uint32_t customInterval = 0;  ///< ms
    bool customIntervalSet = false;
};

}  // namespace tavoren
