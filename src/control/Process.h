#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "common/RunMode.h"
#include "common/SensorSample.h"
#include "common/SequenceKind.h"

namespace tavoren {

class Sensor;

/// One guided data collection: how many steps there are, what the operator is told at each, which
/// sensors drive it, and when a step has ended.
///
/// `onSample` and what it changes belong to the thread that delivers samples; the main thread reads
/// the texts, `stepCount` and `type` and moves `currentStep`. `stepReady` is the one hand-over.
class Process {
  public:
    Process() = default;
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    virtual ~Process() = default;

    virtual void setConfigFile(std::string_view path);
    /// What the operator is to do in `currentStep`.
    virtual std::string getInstructions(bool noEnter) = 0;
    virtual bool isInteractive() const;
    virtual bool isLastRotationStage() const;
    virtual bool needsUserInput() const = 0;
    /// Waits for the operator and returns what was typed.
    virtual std::string readUserInput() = 0;
    virtual bool keepsTimeBase() const;
    virtual void init();
    /// Looks at one sample of a stage indicator.
    virtual void onSample(const SensorSample& sample) = 0;
    /// Whether this sensor's samples drive the sequence.
    virtual bool isStageIndicator(const Sensor& sensor) const = 0;
    virtual void markStepReady();
    /// Type names of the sensors that the sequence works with, the indispensable one first.
    virtual std::vector<std::string> getRequiredSensors() const = 0;
    /// Whether the operator, and not the samples, ends a step.
    virtual bool endsByUser() const;
    /// Offers a sensor; true when the sequence now has what it cannot do without.
    virtual bool addSensor(const std::shared_ptr<Sensor>& sensor) = 0;
    /// Fixes the steps once all sensors are known.
    virtual void prepareSteps();
    virtual void addAuxSensor(const std::shared_ptr<Sensor>& sensor);
    virtual void finish();

    /// Number of segment times from one position to the next: in the full sequence a turn and a
    /// change lie between two positions, in every other a change alone.
    std::size_t segmentStride() const;

    std::int32_t stepCount = 0;    ///< 0 until `prepareSteps`
    std::int32_t currentStep = 0;  ///< the step that the operator sees
    RunMode type = RunMode::none;
    SequenceKind sequence = SequenceKind::full;
    std::int32_t stageIndex = -1;        ///< steps that have ended; -1 before the first sample
    std::atomic<bool> stepReady{false};  ///< a step has ended and nobody has taken note of it
    /// Start and end of each step's segment, milliseconds of sample time: 2s and 2s + 1 for step s.
    std::vector<double> segmentTimes;
    std::vector<std::int32_t> stepLevels;  ///< light levels (lux), ambient light only
};

}  // namespace tavoren
