#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

#include "common/GuardedBy.h"
#include "common/NeverDestroyed.h"
#include "frame/LogLevel.h"
#include "frame/MemoryLog.h"

namespace tavoren {

/// The maintainer's log: kept in memory for the whole run, written to a file only after a failure.
/// One object for the process, made on first use and never destroyed. Safe in every thread; an
/// entry that finds no memory is dropped.
class Logger {
  public:
    /// Adds "[function][line][LEVEL]: message"; an error is shown on the console as
    /// "[ERROR]: message".
    static void write(LogLevel level, std::string_view function, std::uint32_t line,
                      std::string_view message) noexcept;

    /// The log file is logfile.txt in `folder`, which is empty or ends in a backslash.
    static void setLogFile(std::string_view folder);
    /// Writes everything logged so far; a failure is told on the console and nowhere else.
    static void saveToFile();
    /// Forgets everything logged so far; for programs that make many runs in one process.
    static void clear();

  private:
    friend class LogScope;
    friend union NeverDestroyed<Logger>;

    Logger() = default;
    static Logger& instance();
    static void open(const Trace& trace) noexcept;
    static void close(const Trace& trace) noexcept;
    template <typename Action>
    static void addEntry(Action action) noexcept;

    bool save() const TAVOREN_REQUIRES(logLock);

    static constexpr LogLevel consoleLevel = LogLevel::error;

    std::mutex logLock;
    MemoryLog memoryLog TAVOREN_GUARDED_BY(logLock);
    std::string logFilePath TAVOREN_GUARDED_BY(logLock);
};

}  // namespace tavoren
