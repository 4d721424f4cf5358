#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <exception>
#include <iostream>
#include <streambuf>
#include <string>
#include <vector>

namespace tavoren::bench {

/// Keeps the tool's texts for the operator out of the table of results.
class MutedConsole {
  public:
    MutedConsole() : buffer(std::cout.rdbuf(nullptr)) {}
    MutedConsole(const MutedConsole&) = delete;
    MutedConsole& operator=(const MutedConsole&) = delete;
    ~MutedConsole() { std::cout.rdbuf(buffer); }

  private:
    std::streambuf* buffer;
};

/// The texts of one row of the table.
struct Comparison {
    std::string what;
    std::string floor;  ///< the least that any way of doing it must do
    std::string unit;   ///< of what a round works through
    std::string aim{};  ///< empty if there is none
};

/// CPU seconds of an action: on a shared machine the long way would be interrupted and the short
/// floor would not, and a write would wait for the disk.
template <typename Action>
double secondsOf(Action&& action) {
    const auto now = [] {
        std::timespec time{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
    };
    const double start = now();
    action();
    return now() - start;
}

inline double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Runs the tool's way and the floor in turn, so that both meet the same state of the machine; each
/// gives its `secondsOf`. The counters are medians over the rounds, the ratio that of the
/// rounds' own ratios.
template <typename Tool, typename Floor>
void runBesideFloor(benchmark::State& state, const Comparison& row, std::size_t items, Tool tool,
                    Floor floor) {
    std::vector<double> toolSeconds;
    std::vector<double> floorSeconds;
    std::vector<double> ratios;
    const MutedConsole muted;
    try {
        for ([[maybe_unused]] const auto _ : state) {
            toolSeconds.push_back(tool());
            floorSeconds.push_back(floor());
            ratios.push_back(toolSeconds.back() / floorSeconds.back());
            state.SetIterationTime(toolSeconds.back());
        }
    } catch (const std::exception& e) {
        state.SkipWithError(e.what());
        return;
    }
    state.SetLabel(row.what + "|" + row.floor + "|" + row.unit + "|" + row.aim);
    state.counters["items"] = static_cast<double>(items);
    state.counters["tool"] = median(toolSeconds);
    state.counters["floor"] = median(floorSeconds);
    state.counters["ratio"] = median(ratios);
}

/// "1,000,000".
inline std::string grouped(std::int64_t number) {
    std::string text = std::to_string(number);
    for (std::size_t at = text.size(); at > 3; at -= 3)
        text.insert(at - 3, ",");
    return text;
}

}  // namespace tavoren::bench
