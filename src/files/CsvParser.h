#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/SensorSample.h"
#include "common/Units.h"
#include "sensors/SensorDataMap.h"

namespace tavoren {

struct AlsConfig;
class LineReader;
class Sensor;

/// Reads and writes sensor dumps, one comma-separated text file per sensor, and reads the light
/// configuration file, whose lines are split the same way. Made for one call; keeps nothing behind.
class CsvParser {
  public:
    static constexpr std::size_t anyNumber = std::numeric_limits<std::size_t>::max();

    /// Writes one dump for each entry of the map: first the sensors of `order` in that order, then
    /// the rest. A file that cannot be written is passed over; each is whole or absent.
    void writeToFile(std::string_view basePath, const SensorDataMap& data,
                     std::span<const std::shared_ptr<Sensor>> order) const;

    /// The recordings of the sensors, in the sensors' own units, times in whole milliseconds. Form
    /// factor, hinge and, if `withLuid`, the LUID of each file go into its sensor.
    /// Throws `CalibrationException` at the first fault of a file, `MathException` for an unknown
    /// unit; the sensors read before keep what they were given.
    SensorDataMap readFromFile(std::string_view basePath,
                               std::span<const std::shared_ptr<Sensor>> sensors, bool withLuid);

    /// True if the dump that `readFromFile` would look for can be opened. An empty stem leaves the
    /// directory as the base path.
    static bool fileExists(std::string_view directory, std::string_view stem,
                           std::string_view sensorName);

    /// The base path with the sensor's name before its extension, if that begins with "csv", else
    /// at the end: the file the writer opens.
    static std::string sensorFileName(std::string_view basePath, std::string_view sensorName);

    /// Cuts the line into `fields`, which point into it. An empty line has none; a delimiter at the
    /// very end adds none. Stops behind one field more than `mostFields`.
    void splitLine(std::string_view line, char delimiter, std::size_t mostFields = anyNumber);

    /// Checks the header of an inertial sensor's dump in `fields`, which become the units of the
    /// columns, and sets `sensorUnit`, `fileUnit` and `convert`.
    /// Throws `CalibrationException`, for an unknown unit `MathException`.
    void parseHeader(const Sensor& sensor);

    /// Turns `fields` into `time` and `values`. Throws `CalibrationException`.
    /// REQUIRES: at least one field and at most `SampleValues::capacity` more.
    void parseRow();

    /// The header line of a dump, without a line end.
    static std::string formatHeader(const Sensor& sensor);

    /// Appends a row, without a line end; a sample without values is its time alone.
    static void formatRow(std::string& text, const SensorSample& sample);

    /// Reads a light configuration file; the file's keys replace what `config` holds.
    /// Throws `CalibrationException` on every failure.
    void readAlsConfig(std::string_view path, AlsConfig& config);

    /// Takes one line, "values=..." or "delay_time=..."; a line that is not two parts around one
    /// "=" is ignored. Throws `CalibrationException`.
    void parseAlsConfigLine(std::string_view line, AlsConfig& config);

    Unit sensorUnit = Unit::unknown;       ///< in which the sensor keeps its data
    Unit fileUnit = Unit::unknown;         ///< which the header declares
    bool convert = false;                  ///< the two differ
    std::vector<std::string_view> fields;  ///< of the line last split
    double time = 0.0;                     ///< of the row last parsed, milliseconds
    SampleValues values;                   ///< of the row last parsed

  private:
    std::vector<SensorSample> readDump(const std::string& name, Sensor& sensor, bool withLuid);
    void readPreamble(LineReader& lines, Sensor& sensor, bool withLuid);
    std::vector<SensorSample> readRows(LineReader& lines, const Sensor& sensor);
    static std::string readerFileName(std::string_view basePath, std::string_view sensorName);
    static void writeDump(std::string_view basePath, const Sensor& sensor,
                          std::span<const SensorSample> samples);
};

}  // namespace tavoren
