// Whole live runs on any stream of the firmware: sample records with any times and values drive the
// sequence, and what was collected is calibrated or judged. The first byte chooses the run.

#include "control/NewMotionProcess.h"
#include "control/PreTestProcess.h"
#include "control/SensorManager.h"
#include "firmware/PNRRecordPrivate.h"
#include "firmware/ScriptedBrax.h"
#include "firmware/SmhiPublishBuffer.h"
#include "fuzz/Fuzz.h"
#include "sensors/createSensor.h"
#include "sensors/StaticRecord.h"

namespace tavoren::fuzz {
namespace {

/// The record of a sensor that needs no correction.
ByteString neutralRecord() {
    constexpr std::uint32_t identityMapping = 0x00010101;
    ByteString record(StaticRecord::size);
    for (const int diagonal : {0, 4, 8})
        StaticRecord::setNumerator(record, diagonal, 1);
    StaticRecord::setDivider(record, 1);
    StaticRecord::setMapping(record, identityMapping);
    return record;
}

std::vector<std::shared_ptr<Sensor>> sensorsFor(std::uint8_t choice) {
    constexpr std::array<std::uint16_t, 3> types{115, 118, 527};
    std::vector<std::shared_ptr<Sensor>> sensors;
    for (std::size_t i = 0; i < types.size(); ++i) {
        if ((choice >> i & 1) == 0)
            continue;
        sensors.push_back(createSensor({.SensorTypeId = types[i], .Flags = Luid::staticData}));
        sensors.back()->setFirmwareCalibration(neutralRecord());
    }
    return sensors;
}

std::shared_ptr<Process> processFor(std::uint8_t choice) {
    if (choice % 5 == 4)
        return std::make_shared<PreTestProcess>();
    auto process = std::make_shared<NewMotionProcess>(static_cast<SequenceKind>(choice % 5));
    process->type = choice < 16 ? RunMode::calibrate : RunMode::test;
    return process;
}

void feed(SensorManager& manager, ByteSpan payload) {
    const auto transport = std::make_shared<ScriptedBrax>([](const ByteString&) {
        return ScriptedBrax::Answers{responseHeader(SmhiCommand::SMHI_PNR_SESSION_CONTROL_ID)};
    });
    PNRRecordPrivate record(transport);
    record.sensorManager = &manager;
    record.parseBuffer(payload);
}

/// The checks of the magnetic environment, which cut the samples into four parts.
void preTest(Sensor& sensor) {
    std::int32_t axis = 0;
    const auto count = static_cast<std::int32_t>(sensor.bufferedData.size());
    accepts([&] { sensor.checkMagPreTest_singleRotation(0, count - 1, axis); });
    accepts([&] { sensor.startMagPreTest(); });
    accepts([&] { sensor.checkMagPreTest_threeRotations({count / 4, count / 2, count / 4 * 3}); });
    accepts([&] { sensor.checkMagPreTest_translation(); });
}

void check(Input input) {
    const std::uint8_t sensors = input.takeByte();
    const std::uint8_t sequence = input.takeByte();
    SensorManager manager;
    const auto process = processFor(sequence);
    const bool started = accepts([&] {
        manager.setSensors(sensorsFor(sensors));
        manager.setProcess(process);
        manager.configureSampling();
    });
    if (!started)
        return;
    feed(manager, input.bytes());
    const bool isPreTest = process->type == RunMode::magneticTest;
    require(isPreTest || process->stageIndex <= process->stepCount, "no step behind the last one");
    for (const auto& sensor : manager.sensors) {
        require(sensor->bufferedData.size() * SmhiSampleRecord::fixedSize <= input.bytes().size(),
                "no sample is taken in twice");
        accepts([&] { sensor->calibrate(); });
        accepts([&] { sensor->testCalibration(); });
        if (isPreTest)
            preTest(*sensor);
    }
}

}  // namespace
}  // namespace tavoren::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavoren::fuzz::check({data, size});
    return 0;
}
