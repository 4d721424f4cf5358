#include <gtest/gtest.h>

#include <future>
#include <map>

#include "firmware/PNRRecordPrivate.h"
#include "firmware/SampleReceiver.h"
#include "firmware/ScriptedBrax.h"
#include "firmware/SmhiPublishBuffer.h"
#include "sensors/ExpectThrow.h"
#include "sensors/GenericSensor.h"

namespace tavoren {
namespace {

using Answers = ScriptedBrax::Answers;

constexpr Luid accelerometer{115, 0, 0, 0, 0};
constexpr Luid gyroscope{118, 0, 0, 0, 0};
const ByteString startRequest{12, 0, 0, 0, 1, 0, 0};
const ByteString stopRequest{12, 0, 0, 0, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0};
const ByteString acknowledged = responseHeader(12);
const ByteString notInUse = responseHeader(12, 3);

/// Notes what it is given.
struct Receiver final : SampleReceiver {
    struct Sample {
        std::shared_ptr<Sensor> sensor;
        double time;
        std::vector<double> values;
        bool operator==(const Sample&) const = default;
    };
    std::shared_ptr<Sensor> findSensor(std::uint64_t luid) const override {
        const auto found = sensors.find(luid);
        return found == sensors.end() ? nullptr : found->second;
    }
    std::int32_t rawDivisorOf(const Sensor&) const override { return 1000; }
    void handleData(const std::shared_ptr<Sensor>& sensor, double time, std::span<const double> values) override {
        if (throws)
            throw std::runtime_error("no memory");
        samples.push_back({sensor, time, {values.begin(), values.end()}});
    }
    void stageDone(bool status) override { stages.push_back(status); }

    std::shared_ptr<Sensor> a = std::make_shared<GenericSensor>(accelerometer);
    std::shared_ptr<Sensor> g = std::make_shared<GenericSensor>(gyroscope);
    std::map<std::uint64_t, std::shared_ptr<Sensor>> sensors{{accelerometer.value(), a}, {gyroscope.value(), g}};
    std::vector<Sample> samples;
    std::vector<bool> stages;
    bool throws = false;
};

ByteString recordOf(Luid luid, std::uint64_t time, std::vector<std::int32_t> values) {
    ByteString record;
    SmhiSampleRecord::append(record, luid, time, values);
    return record;
}

ByteString bufferOf(std::uint64_t time) {
    return SmhiPublishBuffer{recordOf(accelerometer, time, {1})}.encode();
}

/// A firmware that answers the starts and stops of a session in turn.
struct Session {
    explicit Session(std::vector<Answers> inTurn)
        : transport(
              std::make_shared<ScriptedBrax>([this, answers = std::move(inTurn), next = std::size_t{0}](const auto&) mutable {
                  return next < answers.size() ? answers[next++] : Answers{notInUse};
              })),
          record(std::make_unique<PNRRecordPrivate>(transport, [this] { return time += tick; })) {
        record->sensorManager = &receiver;
    }

    /// Stops a worker that may be waiting for a message, with buffers that are of no account.
    bool stop() {
        auto result = std::async(std::launch::async, [this] { return record->stop(); });
        while (result.wait_for(std::chrono::milliseconds(1)) != std::future_status::ready)
            transport->publish(SmhiPublishBuffer{{}}.encode());
        return result.get();
    }

    PNRRecordPrivate::Clock::time_point time{};
    std::chrono::seconds tick{0};
    Receiver receiver;
    std::shared_ptr<ScriptedBrax> transport;
    std::unique_ptr<PNRRecordPrivate> record;
};

TEST(PNRRecord, ASessionDropsWhatAnEarlierOneLeftAndDrainsItsOwn) {
    Session run(
        {{bufferOf(1), bufferOf(2), acknowledged}, {acknowledged}, {bufferOf(4000), acknowledged}, {notInUse}, {acknowledged}});
    ASSERT_TRUE(run.record->start());
    run.transport->publish(bufferOf(3000));
    run.transport->awaitReader();
    EXPECT_TRUE(run.stop());
    EXPECT_EQ(run.receiver.samples,
              (std::vector<Receiver::Sample>{{run.receiver.a, 3.0, {0.001}}, {run.receiver.a, 4.0, {0.001}}}));
    EXPECT_TRUE(run.receiver.stages.empty());
    EXPECT_FALSE(run.transport->connected);
    EXPECT_TRUE(run.record->start());  // as good as new
    EXPECT_EQ(run.transport->takeWritten(), (std::vector{stopRequest, startRequest, stopRequest, stopRequest, startRequest}));
    run.transport->publish(std::nullopt);  // and gone while it records
}

TEST(PNRRecord, EveryStopOfAWorkerComesToAnEnd) {
    using Row = std::tuple<Answers, bool, bool>;
    for (const auto& [answers, result, failsStage] :
         {Row{{acknowledged}, true, false}, Row{{bufferOf(1), bufferOf(2), acknowledged}, true, false},
          Row{{responseHeader(9), ByteString{1}, ByteString{15, 0}, acknowledged}, true, false},
          Row{{ByteString{12, 0, 0, 0}, acknowledged}, true, false}, Row{{notInUse}, false, true},
          Row{{std::nullopt}, false, true}, Row{{ByteString{}}, false, false}, Row{{bufferOf(1), ByteString{}}, false, false}}) {
        Session run({{notInUse}, {acknowledged}, answers});
        ASSERT_TRUE(run.record->start());
        run.transport->publish(ByteString{});  // means nothing before the stop
        run.transport->publish(bufferOf(1));
        run.transport->awaitReader();
        EXPECT_EQ(run.stop(), result);
        EXPECT_EQ(run.receiver.stages, std::vector<bool>(failsStage ? 1 : 0, false));
        run.record.reset();
        EXPECT_EQ(run.transport->takeWritten(), (std::vector{stopRequest, startRequest, stopRequest, stopRequest}));
    }
}

TEST(PNRRecord, AWorkerThatFailsEndsTheStage) {
    for (const int way : {0, 1, 2}) {
        Session run({{notInUse}, {acknowledged}, {acknowledged}});
        ASSERT_TRUE(run.record->start());
        run.receiver.throws = way == 1;
        run.transport->failsToWrite = way == 2;
        run.transport->publish(way == 0 ? std::nullopt : std::optional(bufferOf(1)));
        EXPECT_FALSE(run.stop());
        EXPECT_EQ(run.receiver.stages, std::vector<bool>{false});
        run.record.reset();  // with a transport that still fails, in the last case
    }
}

TEST(PNRRecord, AStartIsRefusedByItsStatusAlone) {
    using Row = std::pair<ByteString, bool>;
    for (const auto& [answer, result] : {Row{acknowledged, true}, Row{notInUse, false}, Row{bufferOf(1), true},
                                         Row{responseHeader(9, 4), true}, Row{{12, 0, 0}, false}, Row{{}, false}}) {
        Session run({{notInUse}, {answer}, {acknowledged}});
        EXPECT_EQ(run.record->start(), result);
        EXPECT_TRUE(run.transport->connected);
        run.transport->publish(bufferOf(5));
        EXPECT_TRUE(run.stop());  // a left-over session after a refusal
        EXPECT_EQ(run.receiver.samples.size(), result ? 1U : 0U);
    }
}

TEST(PNRRecord, ALeftOverSessionThatDoesNotEndPreventsAStart) {
    Session foreign({{bufferOf(1), responseHeader(9)}});
    EXPECT_FALSE(foreign.record->start());
    EXPECT_FALSE(foreign.transport->connected);
    Session endless({Answers(50, bufferOf(1))});
    endless.tick = std::chrono::seconds(10);
    EXPECT_FALSE(endless.record->stop());
    EXPECT_EQ(endless.time.time_since_epoch(), std::chrono::seconds(110));
    Session silent({{std::nullopt}});
    EXPECT_EQ(textOf<SmhiException>([&] { silent.record->start(); }), "SMHI Error: Failed to read from device, timed out");
}

TEST(PNRRecord, ABufferIsCutIntoItsRecords) {
    Receiver receiver;
    PNRRecordPrivate record(std::make_shared<ScriptedBrax>([](const auto&) { return Answers{notInUse}; }));
    record.sensorManager = &receiver;
    const auto parse = [&](std::initializer_list<ByteString> parts) {
        ByteString payload;
        for (const ByteString& part : parts)
            payload.insert(payload.end(), part.begin(), part.end());
        receiver.samples.clear();
        record.parseBuffer(payload);
        return receiver.samples;
    };
    const ByteString good = recordOf(gyroscope, 2500, {-1500, 7});
    const Receiver::Sample sample{receiver.g, 2.5, {-1.5, 0.007}};
    using Samples = std::vector<Receiver::Sample>;
    EXPECT_EQ(parse({good, recordOf(accelerometer, 1, {}), good}), (Samples{sample, {receiver.a, 0.001, {}}, sample}));
    EXPECT_EQ(parse({recordOf({.SensorTypeId = 9}, 1, {1}), good}), Samples{sample});
    ByteString odd = good;
    odd.insert(odd.end(), {1, 2, 3});
    odd[0] = static_cast<std::uint8_t>(odd.size());
    EXPECT_EQ(parse({odd, good}), (Samples{sample, sample}));
    EXPECT_EQ(parse({recordOf(gyroscope, 0, std::vector(59, 1))})[0].values, std::vector(59, 0.001));
    EXPECT_EQ(parse({recordOf(accelerometer, ~0ULL, {})}), (Samples{{receiver.a, 18446744073709551615.0 / 1000.0, {}}}));
    for (const int length : {0, 1, 16, 26, 255}) {
        ByteString bad = good;
        bad[0] = static_cast<std::uint8_t>(length);
        EXPECT_EQ(parse({good, bad}), Samples{sample}) << length;
    }
}

}  // namespace
}  // namespace tavoren
