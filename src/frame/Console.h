#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavoren {

/// The operator's console. Narrow and wide text share one output in the order of the calls; wide
/// text leaves as UTF-8. One call stays whole beside other threads, and every line end flushes.
/// Usable until the process ends.
class Console {
  public:
    static void print(std::string_view text);
    /// The text and a line end.
    static void printLine(std::string_view text);
    static void printWide(std::wstring_view text);
    static void printWideLine(std::wstring_view text);
    static void flush();

    /// Waits for the next character of standard input; empty at its end.
    static std::optional<char> readCharacter();
    /// Waits for the next line, which comes without its line end; empty at the end of the input.
    static std::optional<std::string> readLine();
};

}  // namespace tavoren
