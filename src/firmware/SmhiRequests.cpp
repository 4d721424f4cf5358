#include "firmware/SmhiRequests.h"

namespace tavoren {

namespace {

constexpr std::uint16_t calibrationBlock = 0x0100;
constexpr std::uint16_t calibrationKind = 2;
constexpr std::size_t outerWrap = 16;  // bytes that the total length counts beside the data
constexpr std::size_t innerWrap = 4;   // bytes that the inner length counts beside the data
constexpr std::size_t stopPadding = 8;

ByteString copyOf(ByteSpan bytes) {
    return {bytes.begin(), bytes.end()};
}

}  // namespace

std::optional<SmhiResetRequest> SmhiResetRequest::decode(ByteSpan message) {
    const auto header = SmhiHeader::decode(message);
    if (!header)
        return std::nullopt;
    return SmhiResetRequest{*header};
}

ByteString SmhiGetRequest::encode() const {
    WireWriter writer;
    header.write(writer);
    return writer.luid(luid).number(selector).take();
}

std::optional<SmhiGetRequest> SmhiGetRequest::decode(ByteSpan message) {
    WireReader reader(message);
    SmhiGetRequest request;
    request.header = SmhiHeader::read(reader);
    request.luid = reader.luid();
    request.selector = reader.number<std::uint16_t>();
    return reader.isGood() ? std::optional(request) : std::nullopt;
}

ByteString SmhiSetPropertyRequest::encode() const {
    WireWriter writer;
    header.write(writer);
    writer.luid(luid).number(property).number(static_cast<std::uint16_t>(value.size()));
    return writer.data(value).take();
}

std::optional<SmhiSetPropertyRequest> SmhiSetPropertyRequest::decode(ByteSpan message) {
    WireReader reader(message);
    SmhiSetPropertyRequest request;
    request.header = SmhiHeader::read(reader);
    request.luid = reader.luid();
    request.property = reader.number<std::uint16_t>();
    request.value = copyOf(reader.data(reader.number<std::uint16_t>()));
    return reader.isGood() ? std::optional(request) : std::nullopt;
}

ByteString SmhiSetCalibrationRequest::encode() const {
    const std::size_t length = calibrationData.size();
    WireWriter writer;
    header.write(writer);
    writer.luid(luid).zeros(4).number(static_cast<std::uint32_t>(length + outerWrap));
    writer.luid(luid).number(static_cast<std::uint16_t>(length + innerWrap));
    writer.number(calibrationBlock).number(calibrationKind);
    return writer.number(static_cast<std::uint16_t>(length)).data(calibrationData).take();
}

std::optional<SmhiSetCalibrationRequest> SmhiSetCalibrationRequest::decode(ByteSpan message) {
    WireReader reader(message);
    SmhiSetCalibrationRequest request;
    request.header = SmhiHeader::read(reader);
    request.luid = reader.luid();
    const auto totalLength = reader.skip(4).number<std::uint32_t>();
    const Luid repeated = reader.luid();
    const auto innerLength = reader.number<std::uint16_t>();
    const auto block = reader.number<std::uint16_t>();
    const auto kind = reader.number<std::uint16_t>();
    const std::size_t length = reader.number<std::uint16_t>();
    request.calibrationData = copyOf(reader.data(length));
    const bool agrees = repeated == request.luid && totalLength == length + outerWrap &&
                        innerLength == length + innerWrap && block == calibrationBlock &&
                        kind == calibrationKind;
    return reader.isGood() && agrees ? std::optional(request) : std::nullopt;
}

ByteString SmhiSessionControlRequest::encode() const {
    WireWriter writer;
    header.write(writer);
    writer.number(type).number(state).number(static_cast<std::uint8_t>(luids.size()));
    for (const Luid& luid : luids)
        writer.luid(luid);
    if (state == stop)
        writer.zeros(stopPadding);
    return writer.take();
}

std::optional<SmhiSessionControlRequest> SmhiSessionControlRequest::decode(ByteSpan message) {
    WireReader reader(message);
    SmhiSessionControlRequest request;
    request.header = SmhiHeader::read(reader);
    request.type = reader.number<std::uint8_t>();
    request.state = reader.number<std::uint8_t>();
    const auto count = reader.number<std::uint8_t>();
    for (int i = 0; i < count; ++i)
        request.luids.push_back(reader.luid());
    if (request.state == stop)
        reader.skip(stopPadding);
    return reader.isGood() ? std::optional(request) : std::nullopt;
}

}  // namespace tavoren
