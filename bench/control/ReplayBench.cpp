#include <benchmark/benchmark.h>

#include <memory>
#include <span>
#include <vector>

#include "BesideFloor.h"
#include "Recording.h"

namespace tavoren::bench {
namespace {

/// The sum of all values in the order of their times.
double mergedSum(std::span<const std::shared_ptr<Sensor>> sensors) {
    std::vector<std::span<const SensorSample>> tracks;
    for (const auto& sensor : sensors)
        tracks.emplace_back(sensor->bufferedData);
    double sum = 0.0;
    while (true) {
        std::span<const SensorSample>* next = nullptr;
        for (auto& track : tracks)
            if (!track.empty() && (!next || track.front().time < next->front().time))
                next = &track;
        if (!next)
            return sum;
        for (const double value : next->front().values)
            sum += value;
        *next = next->subspan(1);
    }
}

/// From the loaded samples to the end of the sequence.
void replay(benchmark::State& state) {
    const Recording recording("full", {"A", "G", "M"},
                              Recording::restForRows(static_cast<std::size_t>(state.range(0) / 3)));
    std::unique_ptr<OfflineRun> run;
    const auto play = [&] {
        run = std::make_unique<OfflineRun>(recording, fullCalibration());
        return run->play();
    };
    const auto merge = [&] {
        return secondsOf([&] { benchmark::DoNotOptimize(mergedSum(run->sensors)); });
    };
    const Comparison row{"replay " + grouped(state.range(0)) + " rows of AGM",
                         "merge them by time and sum", "rows"};
    runBesideFloor(state, row, static_cast<std::size_t>(state.range(0)), play, merge);
}
BENCHMARK(replay)->Arg(180000)->Iterations(11)->UseManualTime();

}  // namespace
}  // namespace tavoren::bench
