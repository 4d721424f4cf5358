#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <exception>
#include <iostream>
#include <streambuf>
#include <string>

#include "control/CalibrationManager.h"
#include "frame/CommandLine.h"
#include "Recording.h"

namespace tavoren::bench {
namespace {

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

/// The whole offline calibration of accelerometer and gyroscope, from the dumps to all files of
/// the result.
void runOffline(const ScratchFolder& folder) {
    const std::string dumps = folder.path.string();
    const std::string results = folder.file("out");
    const std::array arguments{"tavoren",     "-CalibrateOffline", "AG",           "-UseRawData",
                               dumps.c_str(), "-ExportAllFiles",   results.c_str()};
    CommandLine commandLine;
    commandLine.parse(static_cast<int>(arguments.size()), arguments.data());
    CalibrationManager(commandLine).start();
}

void offlineRun(benchmark::State& state) {
    const ScratchFolder folder;
    const auto rowsPerSensor = static_cast<std::size_t>(state.range(0)) / 2;
    const std::size_t rows = writeDumps(Recording(Recording::restForRows(rowsPerSensor)), folder);
    std::string failure;
    {
        const MutedConsole muted;
        try {
            for ([[maybe_unused]] const auto _ : state)
                runOffline(folder);
        } catch (const std::exception& e) {
            failure = e.what();
        }
    }
    if (!failure.empty())
        state.SkipWithError(failure.c_str());
    state.counters["rows"] = static_cast<double>(rows);
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(rows));
}
// The usual sequence of 46.5 s, one of ten times its length, and 120,000 rows. Wall time counts:
// the result reaches the disk.
BENCHMARK(offlineRun)
    ->Arg(9300)
    ->Arg(93000)
    ->Arg(120000)
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tavoren::bench
