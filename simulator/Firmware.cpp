#include "simulator/Firmware.h"

#include <algorithm>

#include "firmware/SmhiRequests.h"
#include "firmware/SmhiResponses.h"

namespace tavoren::simulator {

namespace {

constexpr std::uint8_t plainFailure = 1;
constexpr std::uint8_t notInUse = 6;
constexpr std::uint32_t microsecondsPerMillisecond = 1000;
constexpr int lateBuffers = 3;
constexpr std::size_t luidsInGroup = 2;

ByteString bareReply(std::uint8_t command, std::uint8_t status) {
    return SmhiHeader{.command = command, .is_response = true, .status = status}.encode();
}

std::vector<std::vector<Luid>> grouped(const std::vector<Luid>& luids) {
    std::vector<std::vector<Luid>> groups;
    for (std::size_t i = 0; i < luids.size(); ++i) {
        if (i % luidsInGroup == 0)
            groups.emplace_back();
        groups.back().push_back(luids[i]);
    }
    return groups;
}

Request requestOfBlock(ByteSpan message) {
    const auto request = SmhiGetRequest::decode(message);
    if (!request)
        return Request::unknown;
    switch (request->selector) {
        case SmhiSelector::calibrationData:
            return Request::getRecord;
        case SmhiSelector::sensorList:
            return Request::list;
        case SmhiSelector::pdt:
            return Request::platform;
        default:
            return Request::unknown;
    }
}

Request requestOfSession(ByteSpan message) {
    const auto request = SmhiSessionControlRequest::decode(message);
    if (!request)
        return Request::unknown;
    return request->state == SmhiSessionControlRequest::start ? Request::start : Request::stop;
}

}  // namespace

Firmware::Firmware(Device& ofDevice, const Options& withOptions)
    : device(ofDevice),
      options(withOptions),
      abandoned(withOptions.faults.has(FaultKind::leftOver)) {
    if (!options.records.empty())
        device.records().load(options.records);
    device.reset();
}

Request Firmware::requestOf(ByteSpan message) {
    const auto header = SmhiHeader::decode(message);
    if (!header)
        return Request::unknown;
    switch (header->command) {
        case SmhiCommand::reset:
            return Request::reset;
        case SmhiCommand::getBlock:
            return requestOfBlock(message);
        case SmhiCommand::setCalibration:
            return Request::setRecord;
        case SmhiCommand::getProperty:
            return Request::getProperty;
        case SmhiCommand::setProperty:
            return Request::setProperty;
        case SmhiCommand::SMHI_PNR_SESSION_CONTROL_ID:
            return requestOfSession(message);
        default:
            return Request::unknown;
    }
}

Firmware::Answer Firmware::answer(ByteSpan message) {
    const Request request = requestOf(message);
    if (request == Request::stop && running && options.faults.has(FaultKind::deaf))
        return {};
    const Fault* const status = options.faults.find(FaultKind::status, request);
    // A stop without a session is refused anyway, and that is no fault.
    const bool isRefused = status && (request != Request::stop || running);
    const std::uint8_t command =
        message.empty() ? std::uint8_t{0} : static_cast<std::uint8_t>(message[0] & 0x7FU);
    if (isRefused)
        return spoilt(request, {bareReply(command, status->value), {}});
    return spoilt(request, handle(request, message));
}

Firmware::Answer Firmware::spoilt(Request request, Handled handled) {
    ++answerCount;
    const auto has = [&](FaultKind kind) { return options.faults.find(kind, request) != nullptr; };
    const auto isDue = [&](FaultKind kind) {
        const Fault* const fault = options.faults.find(kind);
        return fault && fault->value == answerCount;
    };
    Answer answer{std::move(handled.before),
                  has(FaultKind::transferError) || isDue(FaultKind::errorAt),
                  isDue(FaultKind::breakAt)};
    if (answer.fails || answer.breaks || has(FaultKind::noReply))
        return answer;
    if (has(FaultKind::shortReply) || isDue(FaultKind::shortAt))
        handled.reply.resize(handled.reply.size() / 2);
    if (has(FaultKind::emptyReply))
        handled.reply.clear();
    answer.messages.push_back(std::move(handled.reply));
    return answer;
}

Firmware::Handled Firmware::handle(Request request, ByteSpan message) {
    switch (request) {
        case Request::setRecord:
            return {bareReply(SmhiCommand::setCalibration, setRecord(message)), {}};
        case Request::setProperty:
            return {bareReply(SmhiCommand::setProperty, setProperty(message)), {}};
        case Request::reset:
            return {bareReply(SmhiCommand::reset, reset()), {}};
        case Request::start:
            return {bareReply(SmhiCommand::SMHI_PNR_SESSION_CONTROL_ID, start()), {}};
        case Request::stop:
            return stop();
        case Request::unknown: {
            const std::uint8_t command = message.empty() ? std::uint8_t{0} : message[0];
            return {bareReply(command & 0x7FU, SmhiStatus::invalidParameter), {}};
        }
        default:
            return handleGet(request, message);
    }
}

Firmware::Handled Firmware::handleGet(Request request, ByteSpan message) {
    const auto get = SmhiGetRequest::decode(message);
    if (!get)
        return {bareReply(message[0] & 0x7FU, SmhiStatus::invalidParameter), {}};
    if (request == Request::list) {
        SmhiSensorListResponse response;
        response.groups = grouped(device.listed());
        return {response.encode(), {}};
    }
    if (request == Request::platform) {
        SmhiPdtResponse response;
        response.formFactor = options.device.formFactor;
        response.hinge = options.device.hinge;
        return {response.encode(), {}};
    }
    if (!device.find(get->luid))
        return {bareReply(get->header.command, SmhiStatus::invalidParameter), {}};
    if (request == Request::getRecord) {
        SmhiCalibrationResponse response;
        response.calibrationData = *device.records().find(get->luid);
        return {response.encode(), {}};
    }
    SmhiPropertyResponse response;
    if (get->selector != SmhiProperty::minimumReportInterval)
        return {bareReply(get->header.command, SmhiStatus::invalidParameter), {}};
    response.value = options.interval * microsecondsPerMillisecond;
    return {response.encode(), {}};
}

std::uint8_t Firmware::setRecord(ByteSpan message) {
    const auto request = SmhiSetCalibrationRequest::decode(message);
    if (request && options.faults.has(FaultKind::forgetful))
        return SmhiStatus::success;
    if (!request || !device.records().set(request->luid, request->calibrationData))
        return SmhiStatus::invalidParameter;
    if (!options.records.empty())
        device.records().save(options.records);
    return SmhiStatus::success;
}

std::uint8_t Firmware::setProperty(ByteSpan message) {
    const auto request = SmhiSetPropertyRequest::decode(message);
    if (!request || !device.find(request->luid))
        return SmhiStatus::invalidParameter;
    const std::uint64_t sensor = request->luid.value();
    const std::uint32_t least = options.interval * microsecondsPerMillisecond;
    WireReader value(request->value);
    if (request->property == SmhiProperty::reportInterval)
        intervals[sensor] = std::max(value.number<std::uint32_t>(), least);
    else if (request->property != SmhiProperty::reportingState)
        return request->property == SmhiProperty::changeSensitivity ? SmhiStatus::success
                                                                    : SmhiStatus::invalidParameter;
    else if (value.number<std::uint8_t>() == SmhiReporting::start)
        reporting[sensor] = std::max(intervals[sensor], least);
    else
        reporting.erase(sensor);
    return value.isGood() ? SmhiStatus::success : SmhiStatus::invalidParameter;
}

std::uint8_t Firmware::reset() {
    running.reset();
    abandoned = false;
    reporting.clear();
    intervals.clear();
    device.reset();
    return SmhiStatus::success;
}

std::uint8_t Firmware::start() {
    if (running || abandoned)
        return plainFailure;
    const std::size_t index = std::min(sessionCount, options.sequences.size() - 1);
    ++sessionCount;
    running.emplace(device, reporting, Script::of(options.sequences[index], options.timing),
                    options.faults);
    return SmhiStatus::success;
}

Firmware::Handled Firmware::stop() {
    const std::uint8_t status = running || abandoned ? SmhiStatus::success : notInUse;
    Handled handled{bareReply(SmhiCommand::SMHI_PNR_SESSION_CONTROL_ID, status), {}};
    if (abandoned)
        running.emplace(device, reporting, Script({}), options.faults);
    if (abandoned || (running && options.faults.has(FaultKind::lateBuffers)))
        for (int i = 0; i < lateBuffers; ++i)
            for (ByteString& message : running->next())
                handled.before.push_back(std::move(message));
    running.reset();
    abandoned = false;
    return handled;
}

void Firmware::abandonSession() {
    running.reset();
    abandoned = true;
}

}  // namespace tavoren::simulator
