#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "BesideFloor.h"
#include "control/NewMotionProcess.h"
#include "control/SensorManager.h"
#include "firmware/BraxBase.h"
#include "firmware/PNRRecordPrivate.h"
#include "firmware/SmhiPublishBuffer.h"
#include "sensors/createSensor.h"
#include "sensors/Sensor.h"

namespace tavoren::bench {
namespace {

/// A firmware that has no session.
class SilentBrax final : public BraxBase {
  public:
    void Connect() override {}
    void Write(const ByteString&) override {}
    ByteString Read(std::size_t) override {
        return SmhiHeader{.command = 12, .is_response = true, .status = 1}.encode();
    }
    void Close() override {}
};

constexpr int samplesPerBuffer = 130;  // of a full message
constexpr int bufferCount = 200;       // of about two minutes at 100 Hz
constexpr std::array<Luid, 2> luids{Luid{115, 0, 0, 0, Luid::staticData},
                                    Luid{118, 0, 0, 0, Luid::staticData}};

/// The payloads of two sensors, each with a sample every `interval` microseconds, to whose first
/// axis every other sample adds `shake`.
std::vector<ByteString> makePayloads(std::uint64_t interval, std::int32_t shake) {
    std::vector<ByteString> payloads(bufferCount);
    std::uint64_t time = 1000000;
    for (ByteString& payload : payloads)
        for (std::size_t k = 0; k < samplesPerBuffer; ++k, time += interval / 2) {
            const std::array values{120 + (k % 4 < 2 ? shake : 0), -340, 98000};
            SmhiSampleRecord::append(payload, luids.at(k % 2), time, values);
        }
    return payloads;
}

/// The tool's way: through the sensor and the sequence to the stored sample.
double receive(std::span<const ByteString> payloads) {
    SensorManager manager;
    manager.setSensors({createSensor(luids[0]), createSensor(luids[1])});
    const auto process = std::make_shared<NewMotionProcess>(SequenceKind::full);
    process->type = RunMode::test;
    manager.setProcess(process);
    manager.configureSampling();
    PNRRecordPrivate record(std::make_shared<SilentBrax>());
    record.sensorManager = &manager;
    return secondsOf([&] {
        for (const ByteString& payload : payloads)
            record.parseBuffer(payload);
    });
}

/// The samples, cut out of the payloads and stored.
std::array<std::vector<SensorSample>, 2> decode(std::span<const ByteString> payloads) {
    std::array<std::vector<SensorSample>, 2> samples;
    const std::uint64_t first = luids[0].value();
    for (ByteSpan rest : payloads)
        while (const auto record = SmhiSampleRecord::takeFrom(rest)) {
            SensorSample sample{static_cast<double>(record->timeStamp) * 1e-3, {}};
            for (std::size_t i = 0; i < record->valueCount(); ++i)
                sample.values.push_back(record->value(i) * 1e-5);
            samples.at(record->luid == first ? 0 : 1).push_back(sample);
        }
    return samples;
}

void receiveSamples(benchmark::State& state) {
    const bool shaken = state.range(1) != 0;
    const std::vector<ByteString> payloads =
        makePayloads(1000000 / static_cast<std::uint64_t>(state.range(0)), shaken ? 300000 : 0);
    const auto floor = [&] {
        return secondsOf([&] { benchmark::DoNotOptimize(decode(payloads)); });
    };
    const Comparison row{
        "receive samples at " + grouped(state.range(0)) + " Hz, " + (shaken ? "shaken" : "at rest"),
        "decode and store them", "samples", "1 M samples/s"};
    runBesideFloor(
        state, row, std::size_t{bufferCount} * samplesPerBuffer, [&] { return receive(payloads); },
        floor);
}
// While the device is shaken each sample looks at the whole last second.
BENCHMARK(receiveSamples)->ArgsProduct({{100, 1000}, {0, 1}})->Iterations(31)->UseManualTime();

}  // namespace
}  // namespace tavoren::bench
