#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "common/SmhiException.h"
#include "firmware/BraxBase.h"
#include "firmware/SmhiHeader.h"

namespace tavoren {

/// A transport that plays the firmware's part. What is read comes from `firmware`, which answers
/// each written message, and from `publish`; no value stands for a failed transfer.
class ScriptedBrax final : public BraxBase {
  public:
    using Answers = std::vector<std::optional<ByteString>>;

    explicit ScriptedBrax(std::function<Answers(const ByteString&)> answersOf) : firmware(std::move(answersOf)) {}

    void Connect() override {
        ++connects;
        connected = true;
    }
    void Write(const ByteString& message) override {
        if (failsToWrite)
            fail("Failed to write to device");
        const std::lock_guard hold(lock);
        written.push_back(message);
        for (auto& answer : firmware(message))
            pending.push_back(std::move(answer));
        arrival.notify_all();
    }
    ByteString Read(std::size_t) override {
        std::unique_lock hold(lock);
        starved = pending.empty();
        arrival.notify_all();
        arrival.wait_for(hold, std::chrono::seconds(10), [this] { return !pending.empty(); });
        if (pending.empty() || !pending.front()) {
            pending.clear();
            fail("Failed to read from device, timed out");
        }
        const ByteString message = *pending.front();
        pending.pop_front();
        starved = false;
        return message;
    }
    void Close() override { connected = false; }

    void publish(std::optional<ByteString> message) {
        const std::lock_guard hold(lock);
        starved = false;
        pending.push_back(std::move(message));
        arrival.notify_all();
    }
    /// Returns once all has been read and a reader waits for more.
    void awaitReader() {
        std::unique_lock hold(lock);
        arrival.wait_for(hold, std::chrono::seconds(10), [this] { return starved; });
    }
    std::vector<ByteString> takeWritten() { return std::exchange(written, {}); }

    std::atomic<bool> failsToWrite{false};
    std::atomic<bool> connected{false};
    std::atomic<int> connects{0};

  private:
    [[noreturn]] void fail(const char* text) {
        connected = false;
        throw SmhiException(text);
    }

    std::function<Answers(const ByteString&)> firmware;
    std::mutex lock;
    std::condition_variable arrival;
    std::deque<std::optional<ByteString>> pending;
    bool starved = false;
    std::vector<ByteString> written;
};

inline ByteString responseHeader(std::uint8_t command, std::uint8_t status = 0) {
    return SmhiHeader{.command = command, .is_response = true, .status = status}.encode();
}

}  // namespace tavoren
