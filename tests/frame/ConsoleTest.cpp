#include "frame/Console.h"

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

#include "frame/VerdictColor.h"

namespace tavoren {
namespace {

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

}  // namespace
}  // namespace tavoren
