#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "common/SensorSample.h"
#include "sensors/SensorDataMap.h"

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

/// What an accelerometer and a gyroscope deliver in a full sequence, at 100 Hz, raw axes, in g0 and
/// degrees per second, with the errors and the noise of a real part: seven rests of `restSeconds`,
/// between them a turn of 360 degrees about Z, Y and X at one position, each followed by a change
/// to the next one. A rest of at least 3 s lets every step end. The same at every call.
struct Recording {
    explicit Recording(double restSeconds);

    /// Rows of each sensor that a rest of this length makes, and the rest for so many rows.
    static double restForRows(std::size_t rows);

    std::vector<SensorSample> acceleration;
    std::vector<SensorSample> rate;
};

/// Stand-ins for the two sensors, enough to name and head their dumps.
std::shared_ptr<Sensor> recordedAccelerometer();
std::shared_ptr<Sensor> recordedGyroscope();

/// Writes the recording as "dataDump" files. Gives the number of rows of both together.
std::size_t writeDumps(const Recording& recording, const ScratchFolder& folder);

}  // namespace tavoren::bench
