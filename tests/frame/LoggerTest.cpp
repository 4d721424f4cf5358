#include "frame/Logger.h"

#include <gtest/gtest.h>

#include <array>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <thread>

#include "files/TemporaryFolder.h"
#include "frame/Console.h"
#include "frame/LogScope.h"
#include "frame/VerdictColor.h"
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

TEST(Console, WideAndNarrowTextKeepTheirOrder) {
    testing::internal::CaptureStdout();
    Console::printWide(L"\u00e9\U0001F600");
    Console::print("a");
    Console::printWideLine(std::wstring{L'b', wchar_t{0xDC00}});
    {
        const VerdictColor color(false);  // no terminal: no escape bytes
        Console::printLine("FAILED");
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "\xC3\xA9\xF0\x9F\x98\x80"
              "ab\xEF\xBF\xBD\nFAILED\n");
}

TEST(Console, ReadsOneCharacterOrLineUntilTheEnd) {
    std::istringstream input("x\nline\r\nlast");
    std::streambuf* const keyboard = std::cin.rdbuf(input.rdbuf());
    EXPECT_EQ(Console::readCharacter(), 'x');
    EXPECT_EQ(Console::readCharacter(), '\n');
    EXPECT_EQ(Console::readLine(), "line");
    EXPECT_EQ(Console::readLine(), "last");
    EXPECT_EQ(Console::readLine(), std::nullopt);
    EXPECT_EQ(Console::readCharacter(), std::nullopt);
    std::cin.rdbuf(keyboard);
    std::cin.clear();
}

/// What `action` prints on the console.
template <typename Action>
std::string printed(Action action) {
    testing::internal::CaptureStdout();
    action();
    Console::flush();
    return testing::internal::GetCapturedStdout();
}

TEST(MemoryLog, ReadsAsWritten) {
    MemoryLog log;
    const Trace outer{"A::b", 7}, shared{"C::d", 8, TraceForm::entered, nullptr, LogLevel::debug},
        other{"C::d", 9, TraceForm::entered};
    const Trace stop{"S::stop", 10, TraceForm::enter, "S::stop()"};
    const std::string start = "[C::d][8][DEBUG]: Entered C::d\n", pair = start + "[C::d][8][DEBUG]: Finished C::d\n";
    log.open(outer);
    log.append(LogLevel::sensorData, "F::g", 4294967295U, "two words");
    std::string pairs;
    for (int i = 0; i < 600; ++i, pairs += pair) {
        log.open(shared);
        log.close(shared);
    }
    log.open(shared);  // left by an exception
    for (const Trace& trace : {shared, other, stop}) {
        log.open(trace);
        log.close(trace);
    }
    log.close(other);
    log.append(LogLevel::warning, "", 0, "");
    log.close(outer);
    EXPECT_EQ(textOf(log), "[A::b][7][INSANE]: Started A::b\n[F::g][4294967295][SENSOR DATA]: two words\n" + pairs + start +
                               pair +
                               "[C::d][9][INSANE]: Entered C::d\n[C::d][9][INSANE]: Finished C::d\n"
                               "[S::stop][10][INSANE]: Enter S::stop()\n[S::stop][10][INSANE]: Exit S::stop()\n"
                               "[C::d][9][INSANE]: Finished C::d\n[][0][WARNING]: \n[A::b][7][INSANE]: Finished A::b\n");
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

TEST_F(LoggerTest, ErrorsReachTheConsoleAndExceptionsLeaveScopesOpen) {
    const auto fail = [] {
        const LogScope scope("Test::fail", 20, LogLevel::info);
        throw std::runtime_error("");
    };
    {
        const LogScope scope("Test::outer", 10);
        EXPECT_EQ(printed([] { Logger::write(LogLevel::error, "Test::first", 3, "bad"); }), "[ERROR]: bad\n");
        EXPECT_EQ(printed([] { Logger::write(LogLevel::warning, "Test::first", 4, "odd"); }), "");
        EXPECT_THROW(fail(), std::runtime_error);
    }
    EXPECT_EQ(savedFrom("Started Test::outer"),
              "[Test::outer][10][INSANE]: Started Test::outer\n"
              "[Test::first][3][ERROR]: bad\n[Test::first][4][WARNING]: odd\n"
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
