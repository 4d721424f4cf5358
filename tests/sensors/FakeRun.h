#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "control/NewMotionProcess.h"
#include "sensors/SensorRun.h"

namespace tavoren {

/// A run that stands still: the sequence and its segment times are what the test says.
class FakeRun final : public SensorRun {
  public:
    explicit FakeRun(SequenceKind kind, RunMode mode = RunMode::calibrate) : process(kind) {
        process.type = mode;
        process.prepareSteps();
    }

    const Process& runningProcess() const override { return process; }
    void addFailure(const std::string& displayName, FailureKind kind) override { failures[displayName] = kind; }

    /// Gives the sensor `perSegment` samples, 10 ms apart, for each segment and sets the segment
    /// times to match. Values are those of `valueOf(segment, index)`.
    template <typename ValueOf>
    void fillSegments(InertialSensor& sensor, int perSegment, ValueOf valueOf) {
        const auto segments = static_cast<int>(process.segmentTimes.size()) - 1;
        double time = 5.0;
        for (int segment = 0; segment < segments; ++segment) {
            process.segmentTimes[static_cast<std::size_t>(segment)] = time - 5.0;
            for (int k = 0; k < perSegment; ++k, time += 10.0)
                sensor.bufferedData.append({time, valueOf(segment, k)});
        }
        process.segmentTimes.back() = time - 5.0;
    }

    NewMotionProcess process;
    std::map<std::string, FailureKind> failures;
};

constexpr Luid staticAccelerometer{115, 0, 0, 0, Luid::staticData};
constexpr Luid staticGyroscope{118, 0, 0, 0, Luid::staticData};

inline Luid secondOf(Luid luid) {
    luid.InstanceId = 1;
    return luid;
}

}  // namespace tavoren
