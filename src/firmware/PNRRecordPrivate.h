#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "common/ByteString.h"
#include "common/Luid.h"
#include "firmware/Wire.h"

namespace tavoren {

class BraxBase;
class SampleReceiver;
class SyncObject;
struct SmhiHeader;
struct SmhiSampleRecord;

/// The recording session: the firmware pushes buffers of samples over a connection of its own, and
/// a worker thread cuts them up and hands each sample on. Which sensors report is told elsewhere.
///
/// `start` and `stop` belong to one thread at a time. Both throw `SmhiException` when the transport
/// fails under them. The transport passes to the worker when that starts and back when it has
/// ended.
class PNRRecordPrivate {
  public:
    using Clock = std::chrono::steady_clock;

    /// Talks to the device of the bus driver.
    PNRRecordPrivate();
    /// `now` is the clock for what is read behind a request to stop.
    explicit PNRRecordPrivate(std::shared_ptr<BraxBase> transport,
                              std::function<Clock::time_point()> now = Clock::now);
    PNRRecordPrivate(const PNRRecordPrivate&) = delete;
    PNRRecordPrivate& operator=(const PNRRecordPrivate&) = delete;
    /// Stops, whatever that leads to.
    ~PNRRecordPrivate();

    /// Ends what is open and starts a session; true when samples will flow.
    bool start();
    /// Ends the session, or one that an earlier process left open. True when it ended in order or
    /// there was none.
    bool stop();
    /// Delivers the samples of a buffer's payload; ends at the first malformed record.
    void parseBuffer(ByteSpan payload);

    SampleReceiver* sensorManager = nullptr;  ///< not owned; set before `start`

  private:
    enum class StopState : std::uint32_t {
        none,
        STOP_CMD_ISSUED,
        requestSent,
        draining,      ///< a buffer has come behind the request
        acknowledged,  ///< with status 0
        refused,
    };
    enum class NotifyCode : std::uint32_t { none, startRefused, stopRefused, readFailed };

    static constexpr std::uint32_t pauseAfterRefusal = 10;  ///< ms

    static ByteString announcedStopRequest(const char* function);
    bool stopRecording();
    bool stopLeftOver();
    ByteString readBehindLeftOvers();
    void startWorker();
    void WorkerThread();
    void handleMessage();
    void takeBuffer(ByteSpan message);
    void takeStopAnswer(const SmhiHeader& header);
    void deliver(const SmhiSampleRecord& record);
    void readFailed() noexcept;
    void SendStopRecReq();
    void notify();
    bool isStopping() const;

    std::atomic<bool> recording{false};  ///< a session is open and the worker was started
    std::atomic<bool> workerRunning{false};
    std::thread workerThread;
    std::unique_ptr<SyncObject> workerDone;  ///< the worker's last action
    std::shared_ptr<BraxBase> transport;
    std::atomic<NotifyCode> notifyCode{NotifyCode::none};
    std::vector<Luid> sensorLuids;  ///< stays empty: a session is for every sensor that reports
    std::atomic<StopState> stopState{StopState::none};
    std::function<Clock::time_point()> now;
    Clock::time_point stopDeadline;  ///< for the firmware's answer to the stop; the worker's own
};

}  // namespace tavoren
