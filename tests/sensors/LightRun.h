#pragma once

#include <memory>
#include <vector>

#include "control/AlsProcess.h"
#include "sensors/AmbientLight.h"
#include "sensors/SensorRun.h"

namespace tavoren {

/// An ambient light run with its sensors.
class LightRun final : public SensorRun {
  public:
    explicit LightRun(std::int32_t stages, bool interactive = false) : process(interactive) {
        process.stepCount = stages;
        process.stepLevels.assign(2 * static_cast<std::size_t>(stages), 0);
    }

    const Process& runningProcess() const override { return process; }
    void addFailure(const std::string&, FailureKind) override {}

    std::shared_ptr<AmbientLight> add(std::uint8_t instance = 0) {
        auto sensor = std::make_shared<AmbientLight>(Luid{65, 0, 0, instance, Luid::staticData});
        sensor->setSensorManager(*this);
        if (!process.stageSensor)
            process.addSensor(sensor);
        process.addAuxSensor(sensor);
        return sensor;
    }

    /// `count` values, from `first` to `second` and back.
    void feed(int count, double first, double second) {
        for (int k = 0; k < count; ++k, time += interval) {
            const SensorSample sample{time, {k % 2 == 0 ? first : second}};
            if (process.stageSensor->dataRecieved(sample))
                process.onSample(sample);
        }
    }

    AlsProcess process;
    double time = 0.0;        ///< ms
    double interval = 100.0;  ///< ms
};

}  // namespace tavoren
