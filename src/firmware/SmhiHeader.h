#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "firmware/Wire.h"

namespace tavoren {

/// The longest message that the tool receives, in bytes.
inline constexpr std::size_t maximumMessageSize = 4000;

/// Values of `SmhiHeader::command`.
namespace SmhiCommand {
inline constexpr std::uint8_t reset = 2;
inline constexpr std::uint8_t getBlock = 4;
inline constexpr std::uint8_t setCalibration = 5;
inline constexpr std::uint8_t getProperty = 9;
inline constexpr std::uint8_t setProperty = 10;
inline constexpr std::uint8_t SMHI_PNR_SESSION_CONTROL_ID = 12;
inline constexpr std::uint8_t SMHI_PNR_REC_PUBLISH_BUF = 15;
}  // namespace SmhiCommand

/// Values of `SmhiHeader::status`; all others are plain failures.
namespace SmhiStatus {
inline constexpr std::uint8_t success = 0;
inline constexpr std::uint8_t invalidParameter = 5;
}  // namespace SmhiStatus

/// The first 4 bytes of every message, and the whole of many responses.
///
///     0  command, bits 0 to 6; is_response, bit 7     1  reserved, 2 bytes     3  status
struct SmhiHeader {
    static constexpr std::size_t size = 4;

    std::uint8_t command = 0;
    bool is_response = false;
    std::uint8_t status = 0;

    void write(WireWriter& writer) const;
    static SmhiHeader read(WireReader& reader);
    ByteString encode() const;
    /// Empty for a message that is too short; of a longer one only the header is looked at.
    static std::optional<SmhiHeader> decode(ByteSpan message);

    friend bool operator==(const SmhiHeader&, const SmhiHeader&) = default;
};

}  // namespace tavoren
