#pragma once

#include <cstdint>
#include <string_view>

namespace tavoren {

enum class LogLevel : std::int32_t {
    error = 0,  ///< failures; these reach the console as well
    warning = 1,
    info = 2,
    debug = 3,
    insane = 4,  ///< the trace of entries and exits
    sensorData = 5,
};

/// The text of a level in a log line: "ERROR", ..., "SENSOR DATA".
std::string_view logLevelText(LogLevel level);

}  // namespace tavoren
