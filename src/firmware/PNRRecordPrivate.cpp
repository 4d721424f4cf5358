#include "firmware/PNRRecordPrivate.h"

#include <array>
#include <exception>
#include <span>
#include <string>
#include <utility>

#include "common/SmhiException.h"
#include "firmware/BraxWindows.h"
#include "firmware/SampleReceiver.h"
#include "firmware/SmhiPublishBuffer.h"
#include "firmware/SmhiRequests.h"
#include "firmware/SyncObjectWin.h"
#include "frame/Logger.h"
#include "platform/Platform.h"
#include "platform/TimeLimits.h"

namespace tavoren {

namespace {

constexpr const char* startFunction = "PNRRecordPrivate::start";
constexpr const char* stopFunction = "PNRRecordPrivate::stop";

/// A message too short for a header has one of zeros.
SmhiHeader headerOf(ByteSpan message) {
    return SmhiHeader::decode(message).value_or(SmhiHeader{});
}

bool isSessionControl(const SmhiHeader& header) {
    return header.command == SmhiCommand::SMHI_PNR_SESSION_CONTROL_ID;
}

void logAcknowledgement(const char* function, std::uint32_t line, const SmhiHeader& header) {
    Logger::write(LogLevel::debug, function, line,
                  "ACK  header.command= " + std::to_string(header.command) +
                      " header.status = " + std::to_string(header.status) +
                      " header.is_response = " + (header.is_response ? "1" : "0"));
}

}  // namespace

PNRRecordPrivate::PNRRecordPrivate() : PNRRecordPrivate(std::make_shared<BraxWindows>()) {}

PNRRecordPrivate::PNRRecordPrivate(std::shared_ptr<BraxBase> channel,
                                   std::function<Clock::time_point()> clock)
    : workerDone(std::make_unique<SyncObjectWin>()),
      transport(std::move(channel)),
      now(std::move(clock)) {}

PNRRecordPrivate::~PNRRecordPrivate() {
    try {
        stop();
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch)
        // There is nobody left to tell.
    }
    if (workerThread.joinable())
        workerThread.join();
}

bool PNRRecordPrivate::start() {
    if (!stop())
        return false;
    Logger::write(LogLevel::info, startFunction, __LINE__, "Start recording");
    const SmhiSessionControlRequest request{.luids = sensorLuids};
    transport->Connect();
    Logger::write(LogLevel::debug, startFunction, __LINE__,
                  "Send PNR session control request, req.type= " + std::to_string(request.type) +
                      "req.state= " + std::to_string(request.state));
    transport->Write(request.encode());
    const ByteString answer = transport->Read(maximumMessageSize);
    const SmhiHeader header = headerOf(answer);
    logAcknowledgement(startFunction, __LINE__, header);
    const bool refused = isSessionControl(header) && header.status != SmhiStatus::success;
    if (refused || answer.size() < SmhiHeader::size) {
        Logger::write(
            LogLevel::error, startFunction, __LINE__,
            "PNR session control request ACK error, status=" + std::to_string(header.status));
        Logger::write(LogLevel::error, startFunction, __LINE__, "Start recording failed !");
        notifyCode = NotifyCode::startRefused;
        Sleep(pauseAfterRefusal);
        return false;
    }
    startWorker();  // looks at `stopState` alone, which only a later `stop` changes
    recording = true;
    return true;
}

void PNRRecordPrivate::startWorker() {
    if (workerRunning)
        return;
    workerRunning = true;
    stopState = StopState::none;
    workerDone->reset();  // before the thread, which may end at once
    try {
        workerThread = std::thread(&PNRRecordPrivate::WorkerThread, this);
    } catch (...) {
        workerRunning = false;
        throw;
    }
}

bool PNRRecordPrivate::stop() {
    Logger::write(LogLevel::debug, stopFunction, __LINE__, "Enter PNRRecordPrivate::stop");
    if (recording && stopState != StopState::none)
        return false;
    const bool ended = recording ? stopRecording() : stopLeftOver();
    Logger::write(LogLevel::debug, stopFunction, __LINE__, "Exit PNRRecordPrivate::stop");
    return ended;
}

bool PNRRecordPrivate::stopRecording() {
    Logger::write(LogLevel::info, stopFunction, __LINE__, "Stop recording");
    stopState = StopState::STOP_CMD_ISSUED;
    workerDone->wait();
    workerThread.join();
    Logger::write(LogLevel::info, stopFunction, __LINE__, "record Stopped");
    const bool ended = stopState == StopState::acknowledged;
    recording = false;
    stopState = StopState::none;
    transport->Close();
    return ended;
}

bool PNRRecordPrivate::stopLeftOver() {
    const ByteString request = announcedStopRequest(stopFunction);
    transport->Connect();
    transport->Write(request);
    const SmhiHeader header = headerOf(readBehindLeftOvers());
    const bool answered = isSessionControl(header);
    if (!answered)
        Logger::write(LogLevel::error, stopFunction, __LINE__,
                      "Unexpected response for SMHI_PNR_SESSION_CONTROL_ID command!");
    else if (header.status != SmhiStatus::success)
        Logger::write(LogLevel::debug, stopFunction, __LINE__, "PNR session was not in use.");
    else
        Logger::write(LogLevel::debug, stopFunction, __LINE__,
                      "PNR session was in use and get closed now.");
    transport->Close();
    return answered;
}

/// The first message that is no buffer, or the buffer that was read when the time was up.
ByteString PNRRecordPrivate::readBehindLeftOvers() {
    const Clock::time_point deadline = now() + leftOverLimit;
    ByteString message = transport->Read(maximumMessageSize);
    logAcknowledgement(stopFunction, __LINE__, headerOf(message));
    while (headerOf(message).command == SmhiCommand::SMHI_PNR_REC_PUBLISH_BUF && now() < deadline) {
        message = transport->Read(maximumMessageSize);
        Logger::write(LogLevel::debug, stopFunction, __LINE__,
                      "Discard the FW left available buffer due to abnormal app exit!");
    }
    return message;
}

void PNRRecordPrivate::parseBuffer(ByteSpan payload) {
    while (const auto record = SmhiSampleRecord::takeFrom(payload))
        deliver(*record);
}

void PNRRecordPrivate::deliver(const SmhiSampleRecord& record) {
    constexpr double microsecondsPerMs = 1000.0;
    const std::shared_ptr<Sensor> sensor = sensorManager->findSensor(record.luid);
    if (!sensor)
        return;
    const double divisor = sensorManager->rawDivisorOf(*sensor);
    std::array<double, SmhiSampleRecord::maximumValues> values{};
    const std::size_t count = record.valueCount();
    for (std::size_t i = 0; i < count; ++i)
        values[i] = static_cast<double>(record.value(i)) / divisor;
    sensorManager->handleData(sensor, static_cast<double>(record.timeStamp) / microsecondsPerMs,
                              std::span(values).first(count));
}

}  // namespace tavoren
