#include "simulator/Trace.h"

#include "common/Text.h"
#include "firmware/SmhiPublishBuffer.h"
#include "firmware/SmhiRequests.h"
#include "simulator/Firmware.h"

namespace tavoren::simulator {

namespace {

std::string describeProperty(ByteSpan message) {
    const auto request = SmhiSetPropertyRequest::decode(message);
    if (!request)
        return " (cut off)";
    const std::string sensor = " " + luidToString(request->luid);
    WireReader value(request->value);
    switch (request->property) {
        case SmhiProperty::reportInterval:
            return sensor + " interval " + std::to_string(value.number<std::uint32_t>()) + " us";
        case SmhiProperty::reportingState:
            return sensor + (value.number<std::uint8_t>() == SmhiReporting::start
                                 ? " reporting start"
                                 : " reporting stop");
        case SmhiProperty::changeSensitivity:
            return sensor + " sensitivity " + std::to_string(value.number<std::int32_t>());
        default:
            return sensor + " property " + std::to_string(request->property);
    }
}

std::string describeRecord(ByteSpan message) {
    const auto request = SmhiSetCalibrationRequest::decode(message);
    return request ? " " + luidToString(request->luid) + " " + toHex(request->calibrationData)
                   : " (cut off)";
}

std::string describeLuid(ByteSpan message) {
    const auto request = SmhiGetRequest::decode(message);
    return request ? " " + luidToString(request->luid) : " (cut off)";
}

}  // namespace

std::string describeRequest(ByteSpan message) {
    const Request request = Firmware::requestOf(message);
    std::string name = requestName(request);
    switch (request) {
        case Request::getRecord:
        case Request::getProperty:
            return name + describeLuid(message);
        case Request::setProperty:
            return name + describeProperty(message);
        case Request::setRecord:
            return name + describeRecord(message);
        case Request::unknown:
            return name + " message of " + std::to_string(message.size()) + " bytes";
        default:
            return name;
    }
}

std::string describeReply(ByteSpan message) {
    const auto header = SmhiHeader::decode(message);
    const std::string size = std::to_string(message.size()) + " bytes";
    if (!header)
        return "message of " + size;
    const auto buffer = SmhiPublishBuffer::decode(message);
    if (header->command != SmhiCommand::SMHI_PNR_REC_PUBLISH_BUF || !buffer)
        return (header->is_response ? "answer to command " : "message of command ") +
               std::to_string(header->command) + ", status " + std::to_string(header->status) +
               ", " + size;
    std::size_t samples = 0;
    for (ByteSpan payload = buffer->payload; SmhiSampleRecord::takeFrom(payload);)
        ++samples;
    return "buffer of " + std::to_string(samples) + " samples";
}

}  // namespace tavoren::simulator
