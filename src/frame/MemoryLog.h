#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>

#include "frame/LogLevel.h"

namespace tavoren {

/// Which words open and close the trace of an operation.
enum class TraceForm : std::uint8_t {
    started,  ///< "Started name", "Finished name"
    entered,  ///< "Entered name", "Finished name"
    enter,    ///< "Enter name", "Exit name"
};

/// The pair of entries around an operation. All texts are literals: only their addresses are kept.
struct Trace {
    const char* function = nullptr;
    std::uint32_t line = 0;
    TraceForm form = TraceForm::started;
    const char* name = nullptr;  ///< stands behind the word; null if it is the function's
    LogLevel level = LogLevel::insane;
};

/// The log entries of a run, in order. Lines are made only when the log is read: an entry of a
/// trace is a record of 16 bytes, an opening and its closing share one when nothing came between,
/// and equal pairs in a row share it as well, so that the trace of every sample costs next to
/// nothing.
class MemoryLog {
  public:
    /// Takes one line with its line end; false ends the reading.
    using Sink = std::function<bool(std::string_view)>;

    void append(LogLevel level, std::string_view function, std::uint32_t line,
                std::string_view message);

    void open(const Trace& trace);
    void close(const Trace& trace);

    /// Hands every line to `sink`; false if that ended the reading.
    bool forEachLine(const Sink& sink) const;

  private:
    enum class Part : std::uint8_t { text, opening, closing, both };

    struct Record {
        const char* function = nullptr;  ///< null for `Part::text`
        std::uint32_t line = 0;
        std::uint8_t repeats = 0;  ///< further times that it occurred in a row
        std::uint8_t level = 0;
        Part part = Part::text;
        TraceForm form = TraceForm::started;

        friend bool operator==(const Record&, const Record&) = default;
    };
    static_assert(sizeof(Record) <= 16);

    /// The lengths of a text entry's function and message, which stand in `texts`.
    struct TextLengths {
        std::size_t function = 0;
        std::size_t message = 0;
    };

    static Record recordOf(const Trace& trace, Part part);
    void joinRepeated();

    std::deque<Record> records;
    std::deque<TextLengths> lengths;
    std::string texts;
};

}  // namespace tavoren
