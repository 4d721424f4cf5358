#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstring>
#include <limits>

#include "files/CsvParser.h"
#include "platform/Files.h"
#include "Recording.h"

namespace tavoren::bench {
namespace {

constexpr std::size_t pieceSize = std::size_t{256} * 1024;

template <typename Action>
double secondsOf(Action action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Times the tool's way and the floor in turn, so that both meet the same state of the machine.
/// The counters are of the best rounds; `ratio` is the tool's time by the floor's.
template <typename Tool, typename Floor>
void runBesideFloor(benchmark::State& state, std::size_t rows, std::size_t bytes, Tool tool,
                    Floor floor) {
    double toolBest = std::numeric_limits<double>::infinity();
    double floorBest = toolBest;
    for (auto _ : state) {
        const double seconds = secondsOf(tool);
        state.SetIterationTime(seconds);
        toolBest = std::min(toolBest, seconds);
        floorBest = std::min(floorBest, secondsOf(floor));
    }
    state.counters["rows/s"] = static_cast<double>(rows) / toolBest;
    state.counters["MB/s"] = static_cast<double>(bytes) / toolBest / 1e6;
    state.counters["floorMB/s"] = static_cast<double>(bytes) / floorBest / 1e6;
    state.counters["ratio"] = toolBest / floorBest;
}

/// One accelerometer's dump of the asked number of rows.
struct DumpFile {
    explicit DumpFile(std::size_t rows)
        : data{{sensor, SampleBuffer(Recording(Recording::restForRows(rows)).acceleration)}} {
        CsvParser().writeToFile(basePath, data, {});
    }
    const SampleBuffer& samples() const { return data.at(sensor); }
    std::size_t bytes() const { return static_cast<std::size_t>(FileReader(name).size()); }

    const ScratchFolder folder;
    const std::string basePath = folder.file("dataDump.csv");
    const std::string name = folder.file("dataDumpAccelerometer.csv");
    const std::shared_ptr<Sensor> sensor = recordedAccelerometer();
    const SensorDataMap data;
};

/// Every number of the file, by nothing but `from_chars` over the same pieces; rows are not kept.
double sumOfNumbers(const std::string& name) {
    FileReader reader(name);
    std::vector<char> piece(2 * pieceSize);
    double sum = 0.0;
    std::size_t unread = 0;
    while (const std::size_t count = reader.read({piece.data() + unread, pieceSize})) {
        const char* at = piece.data();
        const char* end = at + unread + count;
        const char* last = end;
        while (last > at && last[-1] != '\n')
            --last;
        while (at < last) {
            double value = 0.0;
            const auto [behind, error] = std::from_chars(at, last, value);
            sum += error == std::errc{} ? value : 0.0;
            at = behind + 1;
        }
        unread = static_cast<std::size_t>(end - last);
        std::memmove(piece.data(), last, unread);
    }
    return sum;
}

/// The rows by nothing but `to_chars`, written the same way.
void writeNumbers(std::span<const SensorSample> samples, const std::string& name) {
    FileReplacement file(name, LineEnds::platform);
    std::vector<char> piece(pieceSize);
    constexpr std::size_t longestRow = 128;
    char* at = piece.data();
    char* const end = at + piece.size();
    const auto add = [&at, end](double value, char behind) {
        at = std::to_chars(at, end, value, std::chars_format::fixed, 6).ptr;
        *at++ = behind;
    };
    const auto flush = [&] {
        file.write({piece.data(), static_cast<std::size_t>(at - piece.data())});
        at = piece.data();
    };
    for (const SensorSample& sample : samples) {
        add(sample.time, ',');
        add(sample.values[0], ',');
        add(sample.values[1], ',');
        add(sample.values[2], '\n');
        if (at + longestRow > end)
            flush();
    }
    flush();
    file.commit();
}

void loadDump(benchmark::State& state) {
    const DumpFile dump(static_cast<std::size_t>(state.range(0)));
    const auto load = [&dump] {
        benchmark::DoNotOptimize(
            CsvParser().readFromFile(dump.basePath, std::array{dump.sensor}, false));
    };
    const auto floor = [&dump] { benchmark::DoNotOptimize(sumOfNumbers(dump.name)); };
    runBesideFloor(state, dump.samples().size(), dump.bytes(), load, floor);
}
BENCHMARK(loadDump)->Arg(20000)->Arg(1000000)->UseManualTime()->Unit(benchmark::kMillisecond);

void writeDump(benchmark::State& state) {
    const DumpFile dump(static_cast<std::size_t>(state.range(0)));
    const std::string floorName = dump.folder.file("floor.csv");
    const auto write = [&dump] { CsvParser().writeToFile(dump.basePath, dump.data, {}); };
    const auto floor = [&] { writeNumbers(dump.samples(), floorName); };
    runBesideFloor(state, dump.samples().size(), dump.bytes(), write, floor);
}
BENCHMARK(writeDump)->Arg(20000)->Arg(1000000)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace tavoren::bench
