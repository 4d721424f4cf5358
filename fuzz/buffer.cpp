// A recording session against a firmware that says anything, message by message, and then behaves:
// the session ends, and no sample comes from bytes that were not sent.

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <span>

#include "firmware/BraxBase.h"
#include "firmware/PNRRecordPrivate.h"
#include "firmware/SampleReceiver.h"
#include "firmware/SmhiPublishBuffer.h"
#include "fuzz/Fuzz.h"
#include "sensors/GenericSensor.h"

namespace tavoren::fuzz {
namespace {

/// Reads the script first, then good answers to what was written, then empty buffers.
class Firmware final : public BraxBase {
  public:
    explicit Firmware(std::deque<ByteString> messages) : script(std::move(messages)) {}

    void Connect() override {}
    void Write(const ByteString&) override { ++unanswered; }
    ByteString Read(std::size_t) override {
        const std::lock_guard hold(lock);
        if (!script.empty()) {
            const ByteString message = script.front();
            script.pop_front();
            return message;
        }
        saidAll.notify_all();
        if (unanswered == 0)
            return SmhiPublishBuffer{{}}.encode();
        --unanswered;
        return SmhiHeader{.command = SmhiCommand::SMHI_PNR_SESSION_CONTROL_ID, .is_response = true}
            .encode();
    }
    void Close() override {}

    void waitUntilAllIsSaid() {
        std::unique_lock hold(lock);
        saidAll.wait_for(hold, std::chrono::seconds(2), [this] { return script.empty(); });
    }

  private:
    std::deque<ByteString> script;
    std::mutex lock;
    std::condition_variable saidAll;
    std::atomic<int> unanswered{0};
};

/// Counts the bytes that samples stand for.
class Receiver final : public SampleReceiver {
  public:
    std::shared_ptr<Sensor> findSensor(std::uint64_t luid) const override {
        return luid % 4 == 3 ? nullptr : sensor;
    }
    std::int32_t rawDivisorOf(const Sensor&) const override { return 1000; }
    void handleData(const std::shared_ptr<Sensor>&, double time,
                    std::span<const double> values) override {
        require(time >= 0.0 && values.size() <= SmhiSampleRecord::maximumValues, "a sane sample");
        bytes += SmhiSampleRecord::fixedSize + values.size_bytes() / 2;
    }
    void stageDone(bool) override {}

    std::size_t bytes = 0;

  private:
    const std::shared_ptr<Sensor> sensor = std::make_shared<GenericSensor>(Luid{});
};

/// Messages of a byte of length and so many bytes.
std::deque<ByteString> messagesOf(Input input) {
    std::deque<ByteString> messages;
    while (!input.bytes().empty()) {
        const std::size_t length = input.takeByte();
        ByteString message(std::min(length, input.bytes().size()));
        for (std::uint8_t& byte : message)
            byte = input.takeByte();
        messages.push_back(std::move(message));
    }
    return messages;
}

void check(const Input& input) {
    Receiver direct;
    Receiver receiver;
    const auto firmware = std::make_shared<Firmware>(messagesOf(input));
    PNRRecordPrivate record(firmware);
    record.sensorManager = &direct;
    record.parseBuffer(input.bytes());
    require(direct.bytes <= input.bytes().size(), "samples are no more than what was sent");
    record.sensorManager = &receiver;
    accepts([&] {
        if (record.start())
            firmware->waitUntilAllIsSaid();
        record.stop();
    });
    require(receiver.bytes <= input.bytes().size(), "samples are no more than what was sent");
}

}  // namespace
}  // namespace tavoren::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavoren::fuzz::check({data, size});
    return 0;
}
