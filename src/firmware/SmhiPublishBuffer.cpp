#include "firmware/SmhiPublishBuffer.h"

#include <algorithm>

namespace tavoren {

std::int32_t SmhiSampleRecord::value(std::size_t index) const {
    return WireReader(valueBytes.subspan(index * sizeof(std::int32_t))).number<std::int32_t>();
}

void SmhiSampleRecord::append(ByteString& payload, const Luid& luid, std::uint64_t timeStamp,
                              std::span<const std::int32_t> values) {
    WireWriter writer;
    writer.number(static_cast<std::uint8_t>(fixedSize + values.size_bytes()));
    writer.luid(luid).number(timeStamp);
    for (const std::int32_t value : values)
        writer.number(value);
    const ByteString record = writer.take();
    payload.insert(payload.end(), record.begin(), record.end());
}

std::optional<SmhiSampleRecord> SmhiSampleRecord::takeFrom(ByteSpan& payload) {
    if (payload.empty() || payload[0] < fixedSize || payload[0] > payload.size())
        return std::nullopt;
    const ByteSpan whole = payload.first(payload[0]);
    payload = payload.subspan(whole.size());
    WireReader reader(whole.subspan(1));
    SmhiSampleRecord record;
    record.luid = reader.number<std::uint64_t>();
    record.timeStamp = reader.number<std::uint64_t>();
    record.valueBytes = reader.remaining();
    return record;
}

ByteString SmhiPublishBuffer::encode() const {
    WireWriter writer;
    SmhiHeader{.command = SmhiCommand::SMHI_PNR_REC_PUBLISH_BUF}.write(writer);
    writer.number(static_cast<std::uint32_t>(payload.size()));
    return writer.data(payload).take();
}

std::optional<SmhiPublishBuffer> SmhiPublishBuffer::decode(ByteSpan message) {
    WireReader reader(message);
    const std::size_t length = reader.skip(SmhiHeader::size).number<std::uint32_t>();
    if (!reader.isGood())
        return std::nullopt;
    return SmhiPublishBuffer{reader.remaining().first(std::min(length, reader.remaining().size()))};
}

}  // namespace tavoren
