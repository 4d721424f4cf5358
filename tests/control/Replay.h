#pragma once

#include <memory>
#include <string>
#include <vector>

#include "control/NewMotionProcess.h"
#include "control/SensorManager.h"
#include "files/CsvParser.h"
#include "files/TemporaryFolder.h"
#include "sensors/createSensor.h"
#include "sensors/Sensor.h"

namespace tavoren {

/// Sensors, sequence and manager of a replay, and the dumps that it plays.
class Replay {
  public:
    explicit Replay(SequenceKind kind, RunMode mode = RunMode::calibrate) : process(std::make_shared<NewMotionProcess>(kind)) {
        process->type = mode;
    }

    std::shared_ptr<Sensor> add(const Luid& luid, const std::vector<SensorSample>& samples) {
        sensors.push_back(createSensor(luid));
        dumps[sensors.back()] = SampleBuffer(samples);
        return sensors.back();
    }

    void load() {
        CsvParser().writeToFile(folder / "dataDump.csv", dumps, sensors);
        manager.setSensors(sensors);
        manager.setProcess(process);
        manager.loadDump(folder.path.string(), "dataDump", false);
    }

    void play() {
        load();
        manager.playData();
    }

    std::shared_ptr<NewMotionProcess> process;
    SensorManager manager;
    std::vector<std::shared_ptr<Sensor>> sensors;

  private:
    TemporaryFolder folder;
    SensorDataMap dumps;
};

}  // namespace tavoren
