#include <algorithm>
#include <array>
#include <cstdint>

#include "common/Luid.h"
#include "common/Text.h"
#include "files/CsvParser.h"
#include "frame/Logger.h"
#include "platform/Files.h"
#include "sensors/Sensor.h"

namespace tavoren {

namespace {

constexpr const char* writeFunction = "CsvParser::writeToFile";

/// The lines in front of the rows.
std::string formatPreamble(const Sensor& sensor) {
    return "LUID=" + luidToString(sensor.luid) + "\nFORMFACTOR=" + sensor.formFactorName() +
           "\nHINGE=" + sensor.hingeName() + "\n" + CsvParser::formatHeader(sensor) + "\n";
}

}  // namespace

void CsvParser::writeToFile(std::string_view basePath, const SensorDataMap& data,
                            std::span<const std::shared_ptr<Sensor>> order) const {
    std::vector<const SensorDataMap::value_type*> entries;
    const auto add = [&entries](const SensorDataMap::value_type& entry) {
        if (std::find(entries.begin(), entries.end(), &entry) == entries.end())
            entries.push_back(&entry);
    };
    for (const std::shared_ptr<Sensor>& sensor : order)
        if (const auto found = data.find(sensor); found != data.end())
            add(*found);
    for (const SensorDataMap::value_type& entry : data)
        add(entry);
    for (const auto* const entry : entries)
        writeDump(basePath, *entry->first, entry->second);
}

void CsvParser::writeDump(std::string_view basePath, const Sensor& sensor,
                          std::span<const SensorSample> samples) {
    constexpr std::size_t pieceSize = std::size_t{64} * 1024;
    const std::string name = sensor.displayName();
    Logger::write(LogLevel::debug, writeFunction, __LINE__, "Writing sensor dump file for " + name);
    FileReplacement file(sensorFileName(basePath, name), LineEnds::platform);
    Logger::write(LogLevel::info, writeFunction, __LINE__,
                  "Data size is " + std::to_string(samples.size()));
    std::string piece = formatPreamble(sensor);
    for (const SensorSample& sample : samples) {
        formatRow(piece, sample);
        piece += '\n';
        if (piece.size() < pieceSize)
            continue;
        if (!file.write(piece))
            return;
        piece.clear();
    }
    if (file.write(piece))
        file.commit();
}

std::string CsvParser::formatHeader(const Sensor& sensor) {
    constexpr std::array axes{"X", "Y", "Z"};
    const std::string name = sensor.displayName();
    const std::string unit = "[" + unitToString(sensor.dataUnit) + "]";
    std::string header = "time[ms],";
    const bool inertial = sensor.category == Sensor::inertial;
    const std::size_t columns = inertial ? axes.size() : sensor.valueCount;
    for (std::size_t i = 0; i < columns; ++i) {
        if (i > 0)
            header += ',';
        header.append(name).append("_").append(inertial ? axes[i] : std::to_string(i));
        header += unit;
    }
    return header;
}

void CsvParser::formatRow(std::string& text, const SensorSample& sample) {
    appendNumber(text, sample.time);
    for (const double value : sample.values) {
        text += ',';
        appendNumber(text, value);
    }
}

}  // namespace tavoren
