#include "frame/Logger.h"

#include <ios>

#include "frame/Console.h"
#include "platform/Files.h"

namespace tavoren {

Logger& Logger::instance() {
    static NeverDestroyed<Logger> logger;
    return logger.object;
}

template <typename Action>
void Logger::addEntry(Action action) noexcept {
    try {
        Logger& logger = instance();
        const std::scoped_lock lock(logger.logLock);
        action(logger.memoryLog);
    } catch (const std::exception&) {  // no caller fails because of its log
    }
}

void Logger::write(LogLevel level, std::string_view function, std::uint32_t line,
                   std::string_view message) noexcept {
    addEntry([=](MemoryLog& log) {
        if (level <= consoleLevel)
            Console::printLine("[" + std::string(logLevelText(level)) +
                               "]: " + std::string(message));
        log.append(level, function, line, message);
    });
}

void Logger::open(const Trace& trace) noexcept {
    addEntry([&trace](MemoryLog& log) { log.open(trace); });
}

void Logger::close(const Trace& trace) noexcept {
    addEntry([&trace](MemoryLog& log) { log.close(trace); });
}

void Logger::setLogFile(std::string_view folder) {
    Logger& logger = instance();
    const std::scoped_lock lock(logger.logLock);
    logger.logFilePath = std::string(folder) + "logfile.txt";
}

void Logger::saveToFile() {
    Logger& logger = instance();
    const std::scoped_lock lock(logger.logLock);
    if (!logger.save())
        Console::printLine(std::string("Caught saving logfile: ") +
                           std::ios_base::failure("basic_ios::clear").what());
}

void Logger::clear() {
    Logger& logger = instance();
    const std::scoped_lock lock(logger.logLock);
    logger.memoryLog = MemoryLog();
}

bool Logger::save() const {
    FileReplacement file(logFilePath, LineEnds::platform);
    const auto write = [&file](std::string_view line) { return file.write(line); };
    return memoryLog.forEachLine(write) && file.commit();
}

}  // namespace tavoren
