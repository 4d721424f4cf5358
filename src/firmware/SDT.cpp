#include "firmware/SDT.h"

#include <limits>

#include "common/CalibrationException.h"
#include "common/SmhiException.h"
#include "firmware/BraxWindows.h"
#include "firmware/SmhiRequests.h"
#include "firmware/SmhiResponses.h"
#include "frame/LogScope.h"

namespace tavoren {

namespace {

constexpr std::uint32_t microsecondsPerMs = 1000;
constexpr const char* refusedParameter =
    "Set calibration data command failed due to invalid parameter";

/// Status first: a refusal may be a bare header.
bool isSuccess(ByteSpan answer) {
    const auto header = SmhiHeader::decode(answer);
    return header && header->status == SmhiStatus::success;
}

std::uint8_t statusOf(ByteSpan answer) {
    return SmhiHeader::decode(answer).value_or(SmhiHeader{}).status;
}

/// The answer as a record; throws with the command's text if the firmware refused or if fields are
/// missing.
template <typename Response>
Response judged(ByteSpan answer, const std::string& failureText) {
    auto response = isSuccess(answer) ? Response::decode(answer) : std::nullopt;
    if (!response)
        throw SmhiException(failureText);
    return *response;
}

std::string pdtFailure(ByteSpan answer) {
    return "Set PDT command  failed, status: " + std::to_string(statusOf(answer));
}

template <typename Integer>
ByteString valueOf(Integer number) {
    return WireWriter().number(number).take();
}

/// Cut to whole numbers; what does not fit becomes the nearest that does.
std::int32_t truncated(double sensitivity) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (!(sensitivity > Limits::min()))
        return sensitivity < 0 ? Limits::min() : 0;
    return sensitivity < Limits::max() ? static_cast<std::int32_t>(sensitivity) : Limits::max();
}

}  // namespace

SDT::SDT() : SDT(std::make_shared<BraxWindows>()) {}

SDT::SDT(std::shared_ptr<BraxBase> channel) : transport(std::move(channel)) {}

/// One request and its answer on the open connection.
ByteString SDT::converse(const ByteString& request) {
    transport->Write(request);
    return transport->Read(maximumMessageSize);
}

/// One request and its answer on a connection of their own.
ByteString SDT::command(const ByteString& request) {
    transport->Connect();
    ByteString answer;
    try {
        answer = converse(request);
    } catch (const SmhiException&) {
        closeQuietly();
        throw;
    }
    transport->Close();
    return answer;
}

void SDT::closeQuietly() noexcept {
    try {
        transport->Close();
    } catch (const SmhiException&) {  // NOLINT(bugprone-empty-catch)
        // The failure that led here is the one to report.
    }
}

void SDT::resetTvn() {
    const LogScope log("SDT::resetTvn", __LINE__);
    judged<SmhiHeader>(command(SmhiResetRequest{}.encode()), "Reset TVN command failed");
}

void SDT::setCalibrationData(const Luid& sensor, const ByteString& calibrationData) {
    if (calibrationData.empty())
        return;
    if (calibrationData.size() > SmhiSetCalibrationRequest::maximumData)
        throw SmhiException(refusedParameter);
    const SmhiSetCalibrationRequest request{.luid = sensor, .calibrationData = calibrationData};
    const ByteString answer = command(request.encode());
    if (statusOf(answer) == SmhiStatus::invalidParameter)
        throw SmhiException(refusedParameter);
    judged<SmhiHeader>(answer, "Set calibration data command failed");
}

ByteString SDT::getCalibrationData(const Luid& sensor) {
    const LogScope log("SDT::getCalibrationData", __LINE__);
    const SmhiGetRequest request{.luid = sensor, .selector = SmhiSelector::calibrationData};
    return judged<SmhiCalibrationResponse>(command(request.encode()),
                                           "Get calibration data command failed")
        .calibrationData;
}

std::vector<Luid> SDT::enumerateSensors() {
    const SmhiGetRequest request{.luid = {}, .selector = SmhiSelector::sensorList};
    return judged<SmhiSensorListResponse>(command(request.encode()),
                                          "Enumerate sensors command failed")
        .luids();
}

void SDT::setProperty(const Luid& sensor, std::uint16_t property, ByteSpan value) {
    const SmhiSetPropertyRequest request{
        .luid = sensor, .property = property, .value = {value.begin(), value.end()}};
    judged<SmhiHeader>(converse(request.encode()),
                       "Set sampling configuration data command failed");
}

void SDT::startSampling(const std::vector<SampledSensor>& sensors, std::uint32_t reportInterval,
                        double sensitivity) {
    transport->Connect();
    for (const auto& [luid, displayName] : sensors) {
        try {
            setProperty(luid, SmhiProperty::reportInterval,
                        valueOf(reportInterval * microsecondsPerMs));
            setProperty(luid, SmhiProperty::reportingState, valueOf(SmhiReporting::start));
            setProperty(luid, SmhiProperty::changeSensitivity, valueOf(truncated(sensitivity)));
        } catch (const SmhiException&) {
            closeQuietly();
            throw CalibrationException("Failed to sample sensor " + displayName);
        }
    }
    transport->Close();
}

void SDT::stopSampling(const std::vector<Luid>& sensors) {
    transport->Connect();
    try {
        for (const Luid& sensor : sensors)
            setProperty(sensor, SmhiProperty::reportingState, valueOf(SmhiReporting::stop));
    } catch (const SmhiException&) {
        closeQuietly();
        throw;
    }
    transport->Close();
}

SmhiPdtResponse SDT::readPdt() {
    const SmhiGetRequest request{.luid = {}, .selector = SmhiSelector::pdt};
    const ByteString answer = command(request.encode());
    return judged<SmhiPdtResponse>(answer, pdtFailure(answer));
}

std::uint8_t SDT::getFormFactor() {
    return readPdt().formFactor;
}

std::uint8_t SDT::getHinge() {
    return readPdt().hinge;
}

std::uint32_t SDT::getMinReportInterval(const Luid& sensor) {
    const SmhiGetRequest request{.header = {.command = SmhiCommand::getProperty},
                                 .luid = sensor,
                                 .selector = SmhiProperty::minimumReportInterval};
    const ByteString answer = command(request.encode());
    return judged<SmhiPropertyResponse>(answer, pdtFailure(answer)).value / microsecondsPerMs;
}

}  // namespace tavoren
