#include <exception>
#include <string>

#include "common/SmhiException.h"
#include "firmware/BraxBase.h"
#include "firmware/PNRRecordPrivate.h"
#include "firmware/SampleReceiver.h"
#include "firmware/SmhiPublishBuffer.h"
#include "firmware/SmhiRequests.h"
#include "firmware/SyncObject.h"
#include "frame/Logger.h"
#include "platform/Platform.h"
#include "platform/TimeLimits.h"

namespace tavoren {

namespace {

constexpr const char* workerFunction = "PNRRecordPrivate::WorkerThread";

}  // namespace

/// Ends with `workerDone` set, whatever happens on the way.
void PNRRecordPrivate::WorkerThread() {
    while (workerRunning) {
        try {
            handleMessage();
        } catch (const std::exception&) {
            readFailed();
        }
    }
    Logger::write(LogLevel::debug, workerFunction, __LINE__, "record WorkerThread exit");
    workerDone->set();
}

void PNRRecordPrivate::handleMessage() {
    if (stopState == StopState::STOP_CMD_ISSUED) {
        Logger::write(LogLevel::debug, workerFunction, __LINE__,
                      "PNRRecordPrivate::WorkerThread - STOP_CMD_ISSUED");
        SendStopRecReq();
        stopState = StopState::requestSent;
        stopDeadline = now() + leftOverLimit;
    }
    if (isStopping() && now() >= stopDeadline)
        throw SmhiException("Failed to stop the recording, timed out");
    Logger::write(LogLevel::insane, workerFunction, __LINE__, "Reading BRAX SMHI message...");
    const ByteString message = transport->Read(maximumMessageSize);
    if (message.empty()) {
        if (isStopping())
            workerRunning = false;
        return;
    }
    const auto header = SmhiHeader::decode(message).value_or(SmhiHeader{});
    Logger::write(LogLevel::insane, workerFunction, __LINE__,
                  "Get message, header.command=" + std::to_string(header.command) +
                      "size= " + std::to_string(message.size()));
    if (header.command == SmhiCommand::SMHI_PNR_REC_PUBLISH_BUF)
        takeBuffer(message);
    else if (header.command == SmhiCommand::SMHI_PNR_SESSION_CONTROL_ID && header.is_response &&
             isStopping())
        takeStopAnswer(header);
    else
        Logger::write(LogLevel::info, workerFunction, __LINE__,
                      "Not a SMHI_PNR_REC_PUBLISH_BUF or SMHI_PNR_SESSION_CONTROL_ID message !");
}

/// Whether the firmware has the request to stop.
bool PNRRecordPrivate::isStopping() const {
    const StopState state = stopState;
    return state == StopState::requestSent || state == StopState::draining;
}

/// Buffers that come behind the request are samples like all others.
void PNRRecordPrivate::takeBuffer(ByteSpan message) {
    if (isStopping()) {
        stopState = StopState::draining;
        Logger::write(
            LogLevel::debug, workerFunction, __LINE__,
            "pnr record session stop req has been issued, FW publish the left available buffer");
    }
    if (const auto buffer = SmhiPublishBuffer::decode(message))
        parseBuffer(buffer->payload);
}

void PNRRecordPrivate::takeStopAnswer(const SmhiHeader& header) {
    if (header.status == SmhiStatus::success) {
        Logger::write(LogLevel::debug, workerFunction, __LINE__,
                      "PNR session control request ACK\n");
        stopState = StopState::acknowledged;
        workerRunning = false;
        return;
    }
    stopState = StopState::refused;
    workerRunning = false;
    Logger::write(LogLevel::error, workerFunction, __LINE__,
                  "PNR session control request ACK error, Stop recording failed status= " +
                      std::to_string(header.status));
    notifyCode = NotifyCode::stopRefused;
    Sleep(pauseAfterRefusal);
    notify();
}

void PNRRecordPrivate::readFailed() noexcept {
    workerRunning = false;
    try {
        Logger::write(LogLevel::error, workerFunction, __LINE__, "PNR read from FW failed");
        notifyCode = NotifyCode::readFailed;
        notify();
    } catch (const std::exception&) {  // NOLINT(bugprone-empty-catch)
        // Out of memory: the stage ends at its own limit.
    }
}

/// The bytes of the request, which the log then has.
ByteString PNRRecordPrivate::announcedStopRequest(const char* function) {
    SmhiSessionControlRequest request;
    request.state = SmhiSessionControlRequest::stop;
    Logger::write(LogLevel::debug, function, __LINE__,
                  "Send PNR session control request, req.typ=" + std::to_string(request.type) +
                      " req.state = " + std::to_string(request.state));
    return request.encode();
}

void PNRRecordPrivate::SendStopRecReq() {
    transport->Write(announcedStopRequest("PNRRecordPrivate::SendStopRecReq"));
}

void PNRRecordPrivate::notify() {
    const auto code = static_cast<std::uint32_t>(notifyCode.exchange(NotifyCode::none));
    Logger::write(LogLevel::error, "PNRRecordPrivate::notify", __LINE__,
                  "Notify: " + std::to_string(code));
    sensorManager->stageDone(false);
}

}  // namespace tavoren
