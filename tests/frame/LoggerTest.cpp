#include "frame/Logger.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <thread>

#include "files/TemporaryFolder.h"
#include "frame/Console.h"
#include "frame/LogScope.h"
#include "platform/Files.h"

namespace tavoren {
namespace {

std::string textOf(const MemoryLog& log) {
    std::string text;
    log.forEachLine([&text](std::string_view line) {
        text += line;
        return true;
    });
    return text;
}

/// What `action` prints on the console.
template <typename Action>
std::string printed(Action action) {
    testing::internal::CaptureStdout();
    action();
    Console::flush();
    return testing::internal::GetCapturedStdout();
}

TEST(MemoryLog, KeepsEntriesInOrder) {
    MemoryLog log;
    const Trace outer{"A::b", 7};
    log.open(outer);
    log.append(LogLevel::sensorData, "F::g", 4294967295U, "two words");
    for (const Trace& trace :
         {Trace{"C::d", 8, TraceForm::entered, nullptr, LogLevel::debug}, Trace{"S::stop", 9, TraceForm::enter, "S::stop()"}}) {
        log.open(trace);
        log.close(trace);
    }
    log.append(LogLevel::warning, "", 0, "");
    log.close(outer);
    EXPECT_EQ(textOf(log),
              "[A::b][7][INSANE]: Started A::b\n"
              "[F::g][4294967295][SENSOR DATA]: two words\n"
              "[C::d][8][DEBUG]: Entered C::d\n"
              "[C::d][8][DEBUG]: Finished C::d\n"
              "[S::stop][9][INSANE]: Enter S::stop()\n"
              "[S::stop][9][INSANE]: Exit S::stop()\n"
              "[][0][WARNING]: \n"
              "[A::b][7][INSANE]: Finished A::b\n");
}

TEST(MemoryLog, SharedRecordsReadAsWritten) {
    MemoryLog log;
    std::string expected;
    const Trace sample{"S::sample", 1, TraceForm::entered};
    const Trace other{"S::sample", 2, TraceForm::entered};
    const auto pair = [&](const Trace& trace) {
        const std::string start = "[S::sample][" + std::to_string(trace.line) + "][INSANE]: ";
        log.open(trace);
        log.close(trace);
        expected += start + "Entered S::sample\n" + start + "Finished S::sample\n";
    };
    for (int i = 0; i < 600; ++i)
        pair(sample);
    log.open(sample);  // left by an exception
    expected += "[S::sample][1][INSANE]: Entered S::sample\n";
    pair(sample);
    pair(other);
    log.close(other);
    expected += "[S::sample][2][INSANE]: Finished S::sample\n";
    EXPECT_EQ(textOf(log), expected);
}

class LoggerTest : public testing::Test {
  protected:
    /// The saved log from the last line that holds `mark` on; the log has other tests' entries too.
    std::string savedFrom(const std::string& mark) const {
        Logger::setLogFile(folder / "");
        Logger::saveToFile();
        const std::string text = readFile(folder / "logfile.txt").value_or("");
        return text.substr(text.rfind('\n', text.rfind(mark)) + 1);
    }

    const TemporaryFolder folder;
};

TEST_F(LoggerTest, ErrorsReachTheConsoleToo) {
    EXPECT_EQ(printed([] { Logger::write(LogLevel::error, "Test::first", 3, "bad"); }), "[ERROR]: bad\n");
    EXPECT_EQ(printed([] { Logger::write(LogLevel::warning, "Test::first", 4, "odd"); }), "");
    EXPECT_EQ(savedFrom("[3][ERROR]"), "[Test::first][3][ERROR]: bad\n[Test::first][4][WARNING]: odd\n");
}

TEST_F(LoggerTest, ScopeIsClosedUnlessAnExceptionLeavesIt) {
    const auto fail = [] {
        const LogScope scope("Test::fail", 20, LogLevel::info);
        throw std::runtime_error("");
    };
    {
        const LogScope scope("Test::outer", 10);
        EXPECT_THROW(fail(), std::runtime_error);
    }
    EXPECT_EQ(savedFrom("Started Test::outer"),
              "[Test::outer][10][INSANE]: Started Test::outer\n"
              "[Test::fail][20][INFO]: Started Test::fail\n"
              "[Test::outer][10][INSANE]: Finished Test::outer\n");
}

TEST_F(LoggerTest, EntriesOfThreadsStayWhole) {
    Logger::write(LogLevel::info, "Test::threads", 1, "start");
    std::array<std::thread, 4> threads;
    for (std::thread& thread : threads)
        thread = std::thread([] {
            for (int i = 0; i < 200; ++i) {
                const LogScope scope("Test::worker", 2);
                Logger::write(LogLevel::debug, "Test::worker", 3, "value");
            }
        });
    for (auto& thread : threads)
        thread.join();
    const std::string text = savedFrom("]: start");
    std::size_t values = 0;
    for (std::size_t at = 0; (at = text.find("\n[Test::worker][3][DEBUG]: value\n", at)) != std::string::npos; ++at)
        ++values;
    EXPECT_EQ(values, 800U);
}

TEST_F(LoggerTest, FailedSaveIsToldAndReplacesNothing) {
    const std::string target = folder / "sub\\logfile.txt";
    ASSERT_TRUE(makeDirectoryTree(target + "\\occupied"));
    for (const std::string& place : {folder / "missing\\", folder / "sub\\"}) {
        Logger::setLogFile(place);
        EXPECT_EQ(printed(Logger::saveToFile), "Caught saving logfile: basic_ios::clear: iostream error\n");
    }
    EXPECT_TRUE(isDirectory(target + "\\occupied"));
}

}  // namespace
}  // namespace tavoren
