#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <string>

#include "BesideFloor.h"
#include "control/AlsProcess.h"
#include "Recording.h"
#include "sensors/AmbientLight.h"
#include "simulator/Script.h"

namespace tavoren::bench {
namespace {

struct PlayedRun {
    std::unique_ptr<OfflineRun> run;
    std::shared_ptr<Sensor> sensor;
};

/// One pass over the samples that sums each axis and its square.
void sumAxes(const SampleBuffer& samples) {
    std::array<double, SampleValues::capacity> sums{};
    std::array<double, SampleValues::capacity> squares{};
    for (const SensorSample& sample : samples) {
        for (std::size_t i = 0; i < sample.values.size(); ++i) {
            sums.at(i) += sample.values[i];
            squares.at(i) += sample.values[i] * sample.values[i];
        }
    }
    benchmark::DoNotOptimize(sums);
    benchmark::DoNotOptimize(squares);
}

/// Times the calibration of one sensor, from its played samples to its record, in a new run for
/// each round. `play` gives the run and the sensor.
template <typename Play>
void calibrateBesidePass(benchmark::State& state, const std::string& name, Play play) {
    PlayedRun played = play();
    const std::size_t rows = played.sensor->bufferedData.size();
    const auto calibrate = [&] {
        played = play();
        return secondsOf([&] { played.sensor->calibrate(); });
    };
    const auto pass = [&] { return secondsOf([&] { sumAxes(played.sensor->bufferedData); }); };
    const Comparison row{
        "calibrate " + name + ", " + grouped(static_cast<std::int64_t>(rows)) + " rows",
        "one pass that sums values and squares", "rows"};
    runBesideFloor(state, row, rows, calibrate, pass);
}

void calibrateMotion(benchmark::State& state, const std::string& name, std::size_t index) {
    constexpr std::size_t rows = 60000;  // ten minutes
    const Recording recording("full", {"A", "G", "M"}, Recording::restForRows(rows));
    calibrateBesidePass(state, name, [&] {
        auto run = std::make_unique<OfflineRun>(recording, fullCalibration());
        run->play();
        const auto sensor = run->sensors[index];
        return PlayedRun{std::move(run), sensor};
    });
}
BENCHMARK_CAPTURE(calibrateMotion, A, "accelerometer", 0)->Iterations(11)->UseManualTime();
BENCHMARK_CAPTURE(calibrateMotion, G, "gyroscope", 1)->Iterations(11)->UseManualTime();
BENCHMARK_CAPTURE(calibrateMotion, M, "magnetometer", 2)->Iterations(11)->UseManualTime();

void calibrateLight(benchmark::State& state) {
    const simulator::ScriptTiming timing;
    const Recording recording("light", {"L"}, timing.rest);
    calibrateBesidePass(state, "ambient light sensor", [&] {
        const auto process = std::make_shared<AlsProcess>(false);
        process->lightLevels = timing.levels;
        process->init();
        auto run = std::make_unique<OfflineRun>(recording, process);
        run->play();
        for (const int level : timing.levels)
            process->stageSensor->addLightLevel(level);
        return PlayedRun{std::move(run), process->stageSensor};
    });
}
BENCHMARK(calibrateLight)->Iterations(101)->UseManualTime();

}  // namespace
}  // namespace tavoren::bench
