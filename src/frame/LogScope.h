#pragma once

#include <cstdint>

#include "frame/LogLevel.h"
#include "frame/MemoryLog.h"

namespace tavoren {

/// The pair of log entries around an operation, by default "Started name" and "Finished name". An
/// operation left by an exception has no closing entry.
class LogScope {
  public:
    using Form = TraceForm;

    /// REQUIRES: `function` and `name` are literals. The name is the function's unless given. The
    /// level is above `LogLevel::error`.
    LogScope(const char* function, std::uint32_t line, Form form = Form::started,
             const char* name = nullptr, LogLevel level = LogLevel::insane) noexcept;
    LogScope(const char* function, std::uint32_t line, LogLevel level) noexcept;
    ~LogScope();
    LogScope(const LogScope&) = delete;
    LogScope& operator=(const LogScope&) = delete;

  private:
    const Trace trace;
    const int exceptions;  ///< in flight when the scope was entered
};

}  // namespace tavoren
