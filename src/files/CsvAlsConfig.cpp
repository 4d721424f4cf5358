#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "common/CalibrationException.h"
#include "common/Text.h"
#include "files/AlsConfig.h"
#include "files/CsvParser.h"
#include "files/LineReader.h"

namespace tavoren {

namespace {

constexpr std::int32_t lowestLevel = 1;     // lux
constexpr std::int64_t smallestStep = 300;  // lux, between neighbours
constexpr std::int32_t shortestDelay = 3;   // seconds
constexpr std::int32_t longestDelay = 50;   // seconds

/// Levels that rise or fall all the way; equal neighbours fall.
void checkDirection(std::span<const std::int32_t> levels) {
    if (levels.size() < 3)
        return;
    const bool rising = levels[0] < levels[1];
    for (std::size_t i = 2; i < levels.size(); ++i)
        if ((levels[i - 1] < levels[i]) != rising)
            throw CalibrationException(
                "Invalid values in configuration file. Values should be in ascending or "
                "descending order");
}

void checkSteps(std::span<const std::int32_t> levels) {
    for (std::size_t i = 1; i < levels.size(); ++i)
        if (std::abs(std::int64_t{levels[i]} - levels[i - 1]) < smallestStep)
            throw CalibrationException(
                "Invalid delta between values in configuration file. Minimum delta should be " +
                std::to_string(smallestStep));
}

std::vector<std::int32_t> parseLevels(std::span<const std::string_view> texts) {
    std::vector<std::int32_t> levels;
    for (const std::string_view text : texts) {
        const std::int32_t level = parseInteger(trim(text));
        if (level < lowestLevel)
            throw CalibrationException("Invalid light value in configuration file " +
                                       std::to_string(level) + ". value should be bigger than " +
                                       std::to_string(lowestLevel));
        levels.push_back(level);
    }
    if (levels.empty())
        throw CalibrationException(
            "Invalid number of values in configuration file. Minimum number of values is 1");
    checkDirection(levels);
    checkSteps(levels);
    return levels;
}

std::int32_t parseDelay(std::string_view text) {
    const std::int32_t delay = parseInteger(trim(text));
    if (delay < shortestDelay)
        throw CalibrationException("Invalid delay time. Minimum delay time is " +
                                   std::to_string(shortestDelay) + " seconds.");
    if (delay > longestDelay)
        throw CalibrationException("Invalid delay time. Maximum delay time is " +
                                   std::to_string(longestDelay) + " seconds.");
    return delay;
}

}  // namespace

void CsvParser::readAlsConfig(std::string_view path, AlsConfig& config) {
    LineReader lines(path);
    if (!lines.isOpen())
        throw CalibrationException("Cannot read input file " + lines.name());
    for (std::string_view line; lines.next(line);)
        parseAlsConfigLine(line, config);
    fields.clear();  // they point into the reader's text
    if (config.values.empty())
        throw CalibrationException("Invalid configuration file " + lines.name());
}

void CsvParser::parseAlsConfigLine(std::string_view line, AlsConfig& config) {
    splitLine(line, '=', 2);
    if (fields.size() != 2)
        return;
    const std::string_view key = trim(fields[0]);
    const std::string_view value = fields[1];
    if (key == "values") {
        splitLine(value, ',');
        config.values = parseLevels(fields);
    } else if (key == "delay_time") {
        config.delayTime = parseDelay(value);
    } else {
        throw CalibrationException(
            "Invalid value in the configuration file. The format should be \"values=list of comma "
            "separated values\" or \"delay_time=value\"");
    }
}

}  // namespace tavoren
