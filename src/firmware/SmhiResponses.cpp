#include "firmware/SmhiResponses.h"

namespace tavoren {

ByteString SmhiCalibrationResponse::encode() const {
    WireWriter writer;
    header.write(writer);
    writer.zeros(18).number(static_cast<std::uint16_t>(calibrationData.size()));
    return writer.data(calibrationData).take();
}

std::optional<SmhiCalibrationResponse> SmhiCalibrationResponse::decode(ByteSpan message) {
    WireReader reader(message);
    SmhiCalibrationResponse response;
    response.header = SmhiHeader::read(reader);
    const ByteSpan data = reader.data(reader.skip(18).number<std::uint16_t>());
    response.calibrationData.assign(data.begin(), data.end());
    return reader.isGood() ? std::optional(response) : std::nullopt;
}

std::vector<Luid> SmhiSensorListResponse::luids() const {
    std::vector<Luid> all;
    for (const auto& group : groups)
        all.insert(all.end(), group.begin(), group.end());
    return all;
}

ByteString SmhiSensorListResponse::encode() const {
    WireWriter writer;
    header.write(writer);
    writer.zeros(4).number(static_cast<std::uint8_t>(groups.size())).zeros(1);
    for (const auto& group : groups) {
        writer.zeros(11).number(static_cast<std::uint8_t>(group.size()));
        for (const Luid& luid : group)
            writer.luid(luid);
    }
    return writer.take();
}

std::optional<SmhiSensorListResponse> SmhiSensorListResponse::decode(ByteSpan message) {
    WireReader reader(message);
    SmhiSensorListResponse response;
    response.header = SmhiHeader::read(reader);
    response.groups.resize(reader.skip(4).number<std::uint8_t>());
    reader.skip(1);
    for (auto& group : response.groups) {
        group.resize(reader.skip(11).number<std::uint8_t>());
        for (Luid& luid : group)
            luid = reader.luid();
    }
    return reader.isGood() ? std::optional(response) : std::nullopt;
}

ByteString SmhiPdtResponse::encode() const {
    WireWriter writer;
    header.write(writer);
    return writer.zeros(5).number(formFactor).zeros(3).number(hinge).take();
}

std::optional<SmhiPdtResponse> SmhiPdtResponse::decode(ByteSpan message) {
    WireReader reader(message);
    SmhiPdtResponse response;
    response.header = SmhiHeader::read(reader);
    response.formFactor = reader.skip(5).number<std::uint8_t>();
    response.hinge = reader.skip(3).number<std::uint8_t>();
    return reader.isGood() ? std::optional(response) : std::nullopt;
}

ByteString SmhiPropertyResponse::encode() const {
    WireWriter writer;
    header.write(writer);
    return writer.zeros(4).number(value).take();
}

std::optional<SmhiPropertyResponse> SmhiPropertyResponse::decode(ByteSpan message) {
    WireReader reader(message);
    SmhiPropertyResponse response;
    response.header = SmhiHeader::read(reader);
    response.value = reader.skip(4).number<std::uint32_t>();
    return reader.isGood() ? std::optional(response) : std::nullopt;
}

}  // namespace tavoren
