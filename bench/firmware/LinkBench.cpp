#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <memory>

#include "control/NewMotionProcess.h"
#include "control/SensorManager.h"
#include "firmware/BraxBase.h"
#include "firmware/PNRRecordPrivate.h"
#include "firmware/SmhiPublishBuffer.h"
#include "sensors/createSensor.h"
#include "sensors/Sensor.h"

namespace tavoren {
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

/// One full buffer of two sensors at rest, 10 ms apart.
void fillBuffer(ByteString& payload, std::uint64_t& time, const std::array<Luid, 2>& luids) {
    constexpr std::uint64_t interval = 10000;
    constexpr std::array<std::int32_t, 3> atRest{120, -340, 98000};
    payload.clear();
    for (int k = 0; k < samplesPerBuffer; ++k, time += interval / 2)
        SmhiSampleRecord::append(payload, luids[static_cast<std::size_t>(k % 2)], time, atRest);
}

/// From the published buffer through the sensor and the sequence to the stored sample.
void parseAndHandle(benchmark::State& state) {
    const std::array<Luid, 2> luids{Luid{115, 0, 0, 0, Luid::staticData},
                                    Luid{118, 0, 0, 0, Luid::staticData}};
    std::unique_ptr<SensorManager> manager;
    PNRRecordPrivate record(std::make_shared<SilentBrax>());
    std::uint64_t time = 1000000;
    ByteString payload;
    int buffers = 0;
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        if (buffers++ % 200 == 0) {  // a run of a few minutes
            manager = std::make_unique<SensorManager>();
            manager->setSensors({createSensor(luids[0]), createSensor(luids[1])});
            const auto process = std::make_shared<NewMotionProcess>(SequenceKind::full);
            process->type = RunMode::test;
            manager->setProcess(process);
            manager->configureSampling();
            record.sensorManager = manager.get();
        }
        fillBuffer(payload, time, luids);
        state.ResumeTiming();
        record.parseBuffer(payload);
    }
    state.SetItemsProcessed(state.iterations() * samplesPerBuffer);
}
BENCHMARK(parseAndHandle);

}  // namespace
}  // namespace tavoren
