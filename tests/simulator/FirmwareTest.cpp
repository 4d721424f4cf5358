// The simulated firmware without sockets: records, sessions and faults.

#include "simulator/Firmware.h"

#include <gtest/gtest.h>

#include "common/CalibrationException.h"
#include "files/TemporaryFolder.h"
#include "firmware/SmhiPublishBuffer.h"
#include "firmware/SmhiRequests.h"
#include "firmware/SmhiResponses.h"
#include "sensors/InertialSensor.h"
#include "simulator/Trace.h"

namespace tavoren::simulator {
namespace {

constexpr Luid accelerometer{115, 0, 0, 0, 2};
constexpr Luid gyroscope{118, 0, 0, 0, 2};

class SimulatedFirmware : public testing::Test {
  protected:
    SimulatedFirmware() {
        options.sequences = {"minimal"};
        options.device.noiseFactor = 0.0;
    }

    /// Builds the device and its firmware from `options` at first use.
    Firmware& firmware() {
        if (!built) {
            device.emplace(options.device);
            built.emplace(*device, options);
        }
        return *built;
    }
    ByteString reply(const ByteString& request) {
        const Firmware::Answer answer = firmware().answer(request);
        return answer.messages.empty() ? ByteString{} : answer.messages.back();
    }
    int status(const ByteString& request) { return SmhiHeader::decode(reply(request))->status; }
    ByteString record(const Luid& luid) {
        SmhiGetRequest get;
        get.luid = luid;
        return SmhiCalibrationResponse::decode(reply(get.encode()))->calibrationData;
    }
    int setRecord(const Luid& luid, const ByteString& data) {
        SmhiSetCalibrationRequest set;
        set.luid = luid;
        set.calibrationData = data;
        return status(set.encode());
    }
    int setProperty(const Luid& luid, std::uint16_t property, const ByteString& value) {
        SmhiSetPropertyRequest set;
        set.luid = luid;
        set.property = property;
        set.value = value;
        return status(set.encode());
    }
    void report(const Luid& luid) {
        EXPECT_EQ(setProperty(luid, SmhiProperty::reportInterval, {0x10, 0x27, 0, 0}), 0);
        EXPECT_EQ(setProperty(luid, SmhiProperty::reportingState, {SmhiReporting::start}), 0);
    }
    static ByteString session(std::uint8_t state) {
        SmhiSessionControlRequest request;
        request.state = state;
        return request.encode();
    }
    /// The record that a calibration makes which finds the sensor's true parameters.
    ByteString trueRecord(const Luid& luid) {
        const SensorModel& model = *device->find(luid);
        auto& sensor = dynamic_cast<InertialSensor&>(*model.description());
        sensor.setFirmwareCalibration(record(luid));
        sensor.offset = model.truth().offset;
        sensor.scaleMatrix = model.truth().scale;
        sensor.axisMapping = model.truth().mapping;
        sensor.convertToFWForamt();
        return sensor.calibrationData;
    }
    Vector atRest(const Luid& luid) {
        const SampleValues values = device->find(luid)->reading(Moment{}, device->world());
        return Vector(std::span(values.begin(), values.end()));
    }

    Options options;
    std::optional<Device> device;

  private:
    std::optional<Firmware> built;
};

TEST_F(SimulatedFirmware, CorrectsBySetRecordsAfterAReset) {
    const Vector level{0.0, 0.0, 1.0}, still(3);
    firmware();
    ASSERT_GT(maxAbs(atRest(accelerometer) - level), 0.1);
    const ByteString vendorData = record(accelerometer);
    for (const Luid& luid : {accelerometer, gyroscope}) {
        const ByteString calibrated = trueRecord(luid);
        EXPECT_EQ(setRecord(luid, calibrated), 0);
        EXPECT_EQ(record(luid), calibrated);
        EXPECT_TRUE(std::equal(calibrated.begin() + 38, calibrated.end(), vendorData.begin() + 38));
    }
    EXPECT_GT(maxAbs(atRest(accelerometer) - level), 0.1);
    EXPECT_EQ(status(SmhiResetRequest{}.encode()), 0);
    EXPECT_LT(maxAbs(atRest(accelerometer) - level), 1e-4);  // the grain of the record's scale
    EXPECT_LT(maxAbs(atRest(gyroscope) - still), 1e-4);
}

TEST_F(SimulatedFirmware, KeepsRecordsInAFileAndRefusesBadOnes) {
    const TemporaryFolder folder;
    options.records = folder / "records.txt";
    firmware();
    const ByteString calibrated = trueRecord(accelerometer);
    EXPECT_EQ(setRecord({115, 0, 0, 7, 2}, calibrated), 5);
    for (const ByteString& bad :
         {ByteString{}, ByteString{0}, ByteString(40, 9), ByteString(calibrated.begin(), calibrated.end() - 1)})
        EXPECT_EQ(setRecord(accelerometer, bad), 5);
    EXPECT_FALSE(std::filesystem::exists(folder.path / "records.txt"));
    EXPECT_EQ(setRecord(accelerometer, calibrated), 0);
    Device next(options.device);
    const Firmware restarted(next, options);
    EXPECT_EQ(*next.records().find(accelerometer), calibrated);
    const SampleValues reading = next.find(accelerometer)->reading(Moment{}, next.world());
    EXPECT_NEAR(reading[2], 1.0, 1e-4);
    for (const char* bad : {"0073000000000002 zz", "0073000000000002 00", "0073000000000002 0"}) {
        folder.write("records.txt", bad);
        EXPECT_THROW(next.records().load(options.records), CalibrationException) << bad;
    }
}

TEST_F(SimulatedFirmware, PublishesWhatReportsWhileASessionRuns) {
    report(accelerometer);
    EXPECT_EQ(setProperty(gyroscope, SmhiProperty::reportInterval, {0xE8, 3, 0, 0}), 0);  // 1 ms
    EXPECT_EQ(setProperty(gyroscope, SmhiProperty::reportingState, {SmhiReporting::start}), 0);
    EXPECT_EQ(status(session(SmhiSessionControlRequest::stop)), 6);
    EXPECT_EQ(firmware().session(), nullptr);
    EXPECT_EQ(status(session(SmhiSessionControlRequest::start)), 0);
    EXPECT_NE(status(session(SmhiSessionControlRequest::start)), 0);
    const std::vector<ByteString> messages = firmware().session()->next();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(describeReply(messages[0]), "buffer of 8 samples");  // none faster than 10 ms
    ByteSpan payload = SmhiPublishBuffer::decode(messages[0])->payload;
    std::uint64_t before = 0;
    while (const auto sample = SmhiSampleRecord::takeFrom(payload)) {
        EXPECT_EQ(sample->valueCount(), 3U);
        EXPECT_GE(sample->timeStamp, std::max<std::uint64_t>(before, 1ULL << 32U));
        before = sample->timeStamp;
    }
    EXPECT_EQ(setProperty(gyroscope, SmhiProperty::reportingState, {SmhiReporting::stop}), 0);
    EXPECT_EQ(describeReply(firmware().session()->next()[0]), "buffer of 4 samples");
    firmware().abandonSession();
    const Firmware::Answer stopped = firmware().answer(session(SmhiSessionControlRequest::stop));
    ASSERT_GT(stopped.messages.size(), 1U);  // left-over buffers first
    EXPECT_EQ(describeReply(stopped.messages.back()), "answer to command 12, status 0, 4 bytes");
    EXPECT_EQ(status(session(SmhiSessionControlRequest::stop)), 6);
}

TEST_F(SimulatedFirmware, AnswersAnyBytes) {
    for (int first = 0; first < 256; ++first)
        for (const std::size_t size : {0U, 1U, 3U, 4U, 13U, 16U, 40U}) {
            ByteString message(size, 0xFF);
            if (size > 0)
                message[0] = static_cast<std::uint8_t>(first);
            const Firmware::Answer answer = firmware().answer(message);
            EXPECT_FALSE(describeRequest(message).empty());
            ASSERT_FALSE(answer.messages.empty());
            EXPECT_TRUE(SmhiHeader::decode(answer.messages.back()).has_value());
        }
}

}  // namespace
}  // namespace tavoren::simulator
