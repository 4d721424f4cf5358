#include "frame/LogScope.h"

#include <exception>

#include "frame/Logger.h"

namespace tavoren {

LogScope::LogScope(const char* function, std::uint32_t line, Form form, const char* name,
                   LogLevel level) noexcept
    : trace{function, line, form, name, level}, exceptions(std::uncaught_exceptions()) {
    Logger::open(trace);
}

LogScope::LogScope(const char* function, std::uint32_t line, LogLevel level) noexcept
    : LogScope(function, line, Form::started, nullptr, level) {}

LogScope::~LogScope() {
    if (std::uncaught_exceptions() <= exceptions)
        Logger::close(trace);
}

}  // namespace tavoren
