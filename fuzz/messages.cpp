// Every message is empty or a record that its own bytes give back, and every command takes any
// answer of the firmware for a result or a failure of the link.

#include "firmware/ScriptedBrax.h"
#include "firmware/SDT.h"
#include "firmware/SmhiPublishBuffer.h"
#include "firmware/SmhiRequests.h"
#include "firmware/SmhiResponses.h"
#include "fuzz/Fuzz.h"

namespace tavoren::fuzz {
namespace {

template <typename... Records>
void checkRecords(ByteSpan message) {
    const auto checkOne = []<typename Record>(std::optional<Record> record) {
        if (record)
            require(Record::decode(record->encode()) == record, "a record gives itself back");
    };
    (checkOne(Records::decode(message)), ...);
}

void checkBuffer(ByteSpan message) {
    const auto buffer = SmhiPublishBuffer::decode(message);
    if (!buffer)
        return;
    ByteSpan rest = buffer->payload;
    ByteString rebuilt;
    while (const auto record = SmhiSampleRecord::takeFrom(rest)) {
        std::vector<std::int32_t> values;
        for (std::size_t i = 0; i < record->valueCount(); ++i)
            values.push_back(record->value(i));
        SmhiSampleRecord::append(rebuilt, Luid::fromValue(record->luid), record->timeStamp, values);
    }
    require(rebuilt.size() + rest.size() <= buffer->payload.size(), "no byte is read twice");
}

void checkCommands(const ByteString& message) {
    const auto transport = std::make_shared<ScriptedBrax>(
        [&message](const ByteString&) { return ScriptedBrax::Answers{message}; });
    SDT commands(transport);
    const Luid luid{115, 0, 0, 0, 2};
    accepts([&] { commands.resetTvn(); });
    accepts([&] { commands.setCalibrationData(luid, message); });
    accepts([&] { commands.getCalibrationData(luid); });
    accepts([&] { commands.enumerateSensors(); });
    accepts([&] { commands.startSampling({{luid, "Accelerometer"}}, 10, 0.0); });
    accepts([&] { commands.stopSampling({luid}); });
    accepts([&] { commands.getFormFactor(); });
    accepts([&] { commands.getHinge(); });
    accepts([&] { commands.getMinReportInterval(luid); });
    require(!transport->connected, "every command ends its connection");
}

void check(const ByteString& message) {
    checkRecords<SmhiHeader, SmhiResetRequest, SmhiGetRequest, SmhiSetPropertyRequest,
                 SmhiSetCalibrationRequest, SmhiSessionControlRequest, SmhiCalibrationResponse,
                 SmhiSensorListResponse, SmhiPdtResponse, SmhiPropertyResponse>(message);
    checkBuffer(message);
    checkCommands(message);
}

}  // namespace
}  // namespace tavoren::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavoren::fuzz::check(tavoren::fuzz::Input(data, size).byteString());
    return 0;
}
