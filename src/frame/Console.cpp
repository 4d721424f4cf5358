#include "frame/Console.h"

#include <iostream>
#include <mutex>

#include "common/NeverDestroyed.h"
#include "common/Utf8.h"

namespace tavoren {

namespace {

std::mutex& consoleLock() {
    static NeverDestroyed<std::mutex> lock;
    return lock.object;
}

void write(std::string_view text, std::string_view ending) {
    const std::scoped_lock lock(consoleLock());
    std::cout << text << ending;
    if (!ending.empty() || text.find('\n') != std::string_view::npos)
        std::cout.flush();
}

}  // namespace

void Console::print(std::string_view text) {
    write(text, "");
}

void Console::printLine(std::string_view text) {
    write(text, "\n");
}

void Console::printWide(std::wstring_view text) {
    print(toUtf8Lossy(text));
}

void Console::printWideLine(std::wstring_view text) {
    printLine(toUtf8Lossy(text));
}

void Console::flush() {
    const std::scoped_lock lock(consoleLock());
    std::cout.flush();
}

std::optional<char> Console::readCharacter() {
    flush();
    char character = 0;
    if (!std::cin.get(character))
        return std::nullopt;
    return character;
}

std::optional<std::string> Console::readLine() {
    flush();
    std::string line;
    if (!std::getline(std::cin, line))
        return std::nullopt;
    if (line.ends_with('\r'))
        line.pop_back();
    return line;
}

}  // namespace tavoren
