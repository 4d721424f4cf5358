#include "frame/VerdictColor.h"

#include "frame/Console.h"
#include "platform/Platform.h"

namespace tavoren {

namespace {

constexpr std::uint16_t brightGreen = 10;
constexpr std::uint16_t brightRed = 12;

std::uint16_t savedConsoleAttribute = 0;

}  // namespace

void setConsoleColor(std::uint16_t attribute) {
    Console::flush();  // what was printed before keeps its colour
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    CONSOLE_SCREEN_BUFFER_INFO info{};
    GetConsoleScreenBufferInfo(output, &info);
    savedConsoleAttribute = info.wAttributes;
    SetConsoleTextAttribute(output, attribute);
}

void restoreConsoleColor() {
    Console::flush();
    SetConsoleTextAttribute(GetStdHandle(STD_OUTPUT_HANDLE), savedConsoleAttribute);
}

void setVerdictColor(bool good) {
    setConsoleColor(good ? brightGreen : brightRed);
}

}  // namespace tavoren
