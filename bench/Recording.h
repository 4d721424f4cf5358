#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "control/Process.h"
#include "control/SensorManager.h"
#include "sensors/Sensor.h"

namespace tavoren::bench {

/// A folder of its own below the system's temporary one, removed at the end.
class ScratchFolder {
  public:
    ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder();

    /// The name of a file in the folder, joined as the tool joins names.
    std::string file(const std::string& name) const { return path.string() + "\\" + name; }

    const std::filesystem::path path;
};

/// The dumps of a simulated device that moves through a sequence, the same at every call.
class Recording {
  public:
    /// `letters` are those of the simulator's sensors.
    Recording(const std::string& sequence, std::vector<std::string> letters, double restSeconds);

    /// The rest in a full sequence that gives so many rows at 100 Hz.
    static double restForRows(std::size_t rows);
    /// New sensors of the recorded kinds, without samples.
    std::vector<std::shared_ptr<Sensor>> makeSensors() const;

    const ScratchFolder folder;

  private:
    const std::vector<std::string> sensorLetters;
};

/// An offline run over a recording whose samples are loaded and not yet played.
struct OfflineRun {
    OfflineRun(const Recording& recording, const std::shared_ptr<Process>& process);

    /// Plays the samples and gives the seconds that it took.
    double play();

    const std::vector<std::shared_ptr<Sensor>> sensors;
    SensorManager manager;
};

/// The process of a full calibration of motion sensors.
std::shared_ptr<Process> fullCalibration();

}  // namespace tavoren::bench
