#include "firmware/SmhiHeader.h"

namespace tavoren {

namespace {

constexpr std::uint8_t responseBit = 0x80;

}  // namespace

void SmhiHeader::write(WireWriter& writer) const {
    const int flag = is_response ? responseBit : 0;
    writer.number(static_cast<std::uint8_t>((command & ~responseBit) | flag));
    writer.zeros(2).number(status);
}

SmhiHeader SmhiHeader::read(WireReader& reader) {
    const auto first = reader.number<std::uint8_t>();
    SmhiHeader header;
    header.command = static_cast<std::uint8_t>(first & ~responseBit);
    header.is_response = (first & responseBit) != 0;
    header.status = reader.skip(2).number<std::uint8_t>();
    return header;
}

ByteString SmhiHeader::encode() const {
    WireWriter writer;
    write(writer);
    return writer.take();
}

std::optional<SmhiHeader> SmhiHeader::decode(ByteSpan message) {
    WireReader reader(message);
    const SmhiHeader header = read(reader);
    return reader.isGood() ? std::optional(header) : std::nullopt;
}

}  // namespace tavoren
