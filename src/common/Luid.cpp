#include "common/Luid.h"

#include "common/Text.h"

namespace tavoren {

std::uint64_t Luid::value() const {
    return std::uint64_t{SensorTypeId} | std::uint64_t{VendorId} << 16 |
           std::uint64_t{SubTypeId} << 32 | std::uint64_t{InstanceId} << 48 |
           std::uint64_t{Flags} << 56;
}

Luid Luid::fromValue(std::uint64_t value) {
    return {static_cast<std::uint16_t>(value), static_cast<std::uint16_t>(value >> 16),
            static_cast<std::uint16_t>(value >> 32), static_cast<std::uint8_t>(value >> 48),
            static_cast<std::uint8_t>(value >> 56)};
}

std::string luidToString(const Luid& luid) {
    std::string text;
    for (const std::uint16_t field : {luid.SensorTypeId, luid.VendorId, luid.SubTypeId}) {
        appendHex(text, static_cast<std::uint8_t>(field >> 8));
        appendHex(text, static_cast<std::uint8_t>(field));
    }
    appendHex(text, luid.InstanceId);
    appendHex(text, luid.Flags);
    return text;
}

}  // namespace tavoren
