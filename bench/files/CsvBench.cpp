#include <benchmark/benchmark.h>

#include <charconv>
#include <cstring>

#include "BesideFloor.h"
#include "files/CsvParser.h"
#include "platform/Files.h"
#include "Recording.h"

namespace tavoren::bench {
namespace {

constexpr std::size_t pieceSize = std::size_t{256} * 1024;

/// One accelerometer's dump of the asked number of rows, in a file and in memory.
struct DumpFile {
    explicit DumpFile(std::size_t rows)
        : recording("full", {"A"}, Recording::restForRows(rows)), data(load()) {}

    SensorDataMap load() const { return CsvParser().readFromFile(basePath, sensors, false); }
    const SampleBuffer& samples() const { return data.at(sensors.front()); }

    const Recording recording;
    const std::string basePath = recording.folder.file("dataDump.csv");
    const std::string name = recording.folder.file("dataDumpAccelerometer.csv");
    const std::vector<std::shared_ptr<Sensor>> sensors = recording.makeSensors();
    const SensorDataMap data;
};

/// Reads the file in the same pieces and does nothing with them.
void readBytes(const std::string& name) {
    FileReader reader(name);
    std::vector<char> piece(pieceSize);
    while (reader.read(piece) > 0)
        benchmark::DoNotOptimize(piece.data());
}

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

Comparison rowOf(const benchmark::State& state, const char* action, const char* floor,
                 const char* aim) {
    return {action + (" " + grouped(state.range(0))) + " rows", floor, "rows", aim};
}

/// The tool's way of loading beside a floor.
template <typename Floor>
void loadBeside(benchmark::State& state, const char* floorName, const char* aim, Floor floor) {
    const DumpFile dump(static_cast<std::size_t>(state.range(0)));
    const auto load = [&dump] {
        return secondsOf([&dump] { benchmark::DoNotOptimize(dump.load()); });
    };
    const auto bare = [&] { return secondsOf([&] { floor(dump.name); }); };
    runBesideFloor(state, rowOf(state, "load", floorName, aim), dump.samples().size(), load, bare);
}

void loadBesideFromChars(benchmark::State& state) {
    loadBeside(state, "bare `from_chars`", "2",
               [](const std::string& name) { benchmark::DoNotOptimize(sumOfNumbers(name)); });
}
BENCHMARK(loadBesideFromChars)->Arg(20000)->Iterations(51)->UseManualTime();
BENCHMARK(loadBesideFromChars)->Arg(1000000)->Iterations(5)->UseManualTime();

void loadBesideReading(benchmark::State& state) {
    loadBeside(state, "read the bytes", "", readBytes);
}
BENCHMARK(loadBesideReading)->Arg(20000)->Iterations(51)->UseManualTime();
BENCHMARK(loadBesideReading)->Arg(1000000)->Iterations(5)->UseManualTime();

void writeDump(benchmark::State& state) {
    const DumpFile dump(static_cast<std::size_t>(state.range(0)));
    const ScratchFolder folder;
    const auto write = [&] {
        return secondsOf(
            [&] { CsvParser().writeToFile(folder.file("dump.csv"), dump.data, dump.sensors); });
    };
    const auto floor = [&] {
        return secondsOf([&] { writeNumbers(dump.samples(), folder.file("floor.csv")); });
    };
    runBesideFloor(state, rowOf(state, "write", "bare `to_chars`", "1.5"), dump.samples().size(),
                   write, floor);
}
BENCHMARK(writeDump)->Arg(20000)->Iterations(31)->UseManualTime();
BENCHMARK(writeDump)->Arg(1000000)->Iterations(5)->UseManualTime();

}  // namespace
}  // namespace tavoren::bench
