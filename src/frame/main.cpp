#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <string>

#include "common/CalibrationException.h"
#include "common/CmdLineException.h"
#include "common/GuardedBy.h"
#include "common/SmhiException.h"
#include "common/Version.h"
#include "control/CalibrationManager.h"
#include "frame/Clock.h"
#include "frame/CommandLine.h"
#include "frame/Console.h"
#include "frame/Logger.h"
#include "platform/Interrupt.h"
#include "platform/Platform.h"
#include "platform/StandardStreams.h"

namespace tavoren {

namespace {

constexpr int success = 0;
constexpr int failure = -1;

std::mutex theManagerLock;
std::shared_ptr<CalibrationManager> theManager
    TAVOREN_GUARDED_BY(theManagerLock);  // the interrupt's only way to the run

std::shared_ptr<CalibrationManager> liveManager() {
    const std::scoped_lock lock(theManagerLock);
    return theManager;
}

void setManager(std::shared_ptr<CalibrationManager> manager) {
    const std::scoped_lock lock(theManagerLock);
    theManager = std::move(manager);
}

/// The console shows the tool's text, which is UTF-8; `restore` gives back what it was set to.
class ConsoleEncoding {
  public:
    ConsoleEncoding() { SetConsoleOutputCP(CP_UTF8); }
    ~ConsoleEncoding() { restore(); }
    ConsoleEncoding(const ConsoleEncoding&) = delete;
    ConsoleEncoding& operator=(const ConsoleEncoding&) = delete;

    static void restore() { SetConsoleOutputCP(before); }

  private:
    static inline const auto before = GetConsoleOutputCP();
};

/// Answers Ctrl-C; the process ends when it returns.
void onInterrupt(int signal) {
    Console::print("Interrupt signal (" + std::to_string(signal) + ") received.\n");
    if (const auto manager = liveManager())
        manager->abort();
    Console::printLine("Abort request");
    ConsoleEncoding::restore();
}

/// Libraries come from the system's own folder alone.
void restrictLibraryLoading() {
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32);
    SetDllDirectoryW(L"");
}

void printBanner() {
    Console::printWide(L"\nOrvane(R) Tavoren Calibration Tool\n");
    Console::printWideLine(L"Version: " + std::wstring(versionText));
}

/// `elapsed` in milliseconds. The second total counts in 32 bits and whole seconds.
void printTotals(std::int64_t elapsed, std::uint32_t userWaitSeconds) {
    Console::printLine("Total run time: " + std::to_string(elapsed / 1000) + " seconds");
    const std::int32_t seconds = static_cast<std::int32_t>(elapsed) / 1000;
    const auto active =
        static_cast<std::int32_t>(static_cast<std::uint32_t>(seconds) - userWaitSeconds);
    Console::printLine("Total run time (excluding time waiting for user inputs): " +
                       std::to_string(active) + " seconds");
}

void run(CommandLine& commandLine, int argc, const char* const* argv) {
    const std::int64_t start = nowMilliseconds();
    printBanner();
    commandLine.parse(argc, argv);
    const auto manager = std::make_shared<CalibrationManager>(commandLine);
    setManager(manager);
    Logger::setLogFile(manager->exportFolder());
    manager->start();
    printTotals(nowMilliseconds() - start, manager->userWaitSeconds);
}

int runAndReport(CommandLine& commandLine, int argc, const char* const* argv) {
    try {
        run(commandLine, argc, argv);
        return success;
    } catch (const CmdLineException& e) {
        Console::printLine(e.what());
        Console::printLine(commandLine.usage(argc > 0 && argv ? argv[0] : ""));
    } catch (const SmhiException& e) {
        Console::printLine(e.what());
    } catch (const CalibrationException& e) {
        Console::printLine("Error:");
        Console::printLine(e.what());
    } catch (const std::exception& e) {
        Console::printLine(e.what());
    }
    return failure;
}

}  // namespace

}  // namespace tavoren

int main(int argc, char** argv) {
    tavoren::fillStandardStreams();
    tavoren::restrictLibraryLoading();
    tavoren::installInterruptHandler(tavoren::onInterrupt);
    const tavoren::ConsoleEncoding encoding;
    tavoren::CommandLine commandLine;
    return tavoren::runAndReport(commandLine, argc, argv);
}
