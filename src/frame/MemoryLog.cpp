#include "frame/MemoryLog.h"

#include <array>
#include <limits>

namespace tavoren {

namespace {

constexpr std::array<std::string_view, 6> levelTexts{"ERROR", "WARNING", "INFO",
                                                     "DEBUG", "INSANE",  "SENSOR DATA"};

struct FormWords {
    std::string_view opening;
    std::string_view closing;
};

constexpr std::array<FormWords, 3> formWords{
    {{"Started", "Finished"}, {"Entered", "Finished"}, {"Enter", "Exit"}}};

const FormWords& wordsOf(TraceForm form) {
    return formWords[static_cast<std::size_t>(form)];
}

std::string traceMessage(std::string_view word, const char* name) {
    return std::string(word) + " " + name;
}

/// Makes lines in one buffer and hands them on.
class LineWriter {
  public:
    explicit LineWriter(const MemoryLog::Sink& lineSink) : sink(lineSink) {}

    /// The message of an entry is `word`, a blank and `name`, or `word` alone.
    bool put(std::string_view function, std::uint32_t line, LogLevel level, std::string_view word,
             std::string_view name = "") {
        text.clear();
        text.append("[").append(function).append("][").append(std::to_string(line)).append("][");
        text.append(logLevelText(level)).append("]: ").append(word);
        if (!name.empty())
            text.append(" ").append(name);
        return sink(text.append("\n"));
    }

  private:
    const MemoryLog::Sink& sink;
    std::string text;
};

/// The front of `text`, which loses it.
std::string_view takeFront(std::string_view& text, std::size_t length) {
    const std::string_view front = text.substr(0, length);
    text.remove_prefix(length);
    return front;
}

}  // namespace

std::string_view logLevelText(LogLevel level) {
    return levelTexts[static_cast<std::size_t>(level)];
}

void MemoryLog::append(LogLevel level, std::string_view function, std::uint32_t line,
                       std::string_view message) {
    texts.append(function).append(message);
    lengths.push_back({function.size(), message.size()});
    records.push_back(recordOf({nullptr, line, TraceForm::started, nullptr, level}, Part::text));
}

MemoryLog::Record MemoryLog::recordOf(const Trace& trace, Part part) {
    return {.function = trace.function,
            .line = trace.line,
            .level = static_cast<std::uint8_t>(trace.level),
            .part = part,
            .form = trace.form};
}

void MemoryLog::open(const Trace& trace) {
    if (trace.name)
        append(trace.level, trace.function, trace.line,
               traceMessage(wordsOf(trace.form).opening, trace.name));
    else
        records.push_back(recordOf(trace, Part::opening));
}

void MemoryLog::close(const Trace& trace) {
    if (trace.name) {
        append(trace.level, trace.function, trace.line,
               traceMessage(wordsOf(trace.form).closing, trace.name));
    } else if (!records.empty() && records.back() == recordOf(trace, Part::opening)) {
        records.back().part = Part::both;
        joinRepeated();
    } else {
        records.push_back(recordOf(trace, Part::closing));
    }
}

void MemoryLog::joinRepeated() {
    if (records.size() < 2)
        return;
    Record& before = records[records.size() - 2];
    Record once = before;
    once.repeats = 0;
    if (once == records.back() && before.repeats < std::numeric_limits<std::uint8_t>::max()) {
        ++before.repeats;
        records.pop_back();
    }
}

bool MemoryLog::forEachLine(const Sink& sink) const {
    LineWriter writer(sink);
    std::string_view rest = texts;
    auto length = lengths.begin();
    for (const Record& record : records) {
        const auto level = static_cast<LogLevel>(record.level);
        if (record.part == Part::text) {
            const std::string_view function = takeFront(rest, length->function);
            const std::string_view message = takeFront(rest, length->message);
            ++length;
            if (!writer.put(function, record.line, level, message))
                return false;
            continue;
        }
        const FormWords& words = wordsOf(record.form);
        const auto put = [&](std::string_view word) {
            return writer.put(record.function, record.line, level, word, record.function);
        };
        for (int time = 0; time <= record.repeats; ++time) {
            if (record.part != Part::closing && !put(words.opening))
                return false;
            if (record.part != Part::opening && !put(words.closing))
                return false;
        }
    }
    return true;
}

}  // namespace tavoren
