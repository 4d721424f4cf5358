#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "common/ByteString.h"
#include "common/Luid.h"
#include "firmware/SmhiHeader.h"

namespace tavoren {

// What the tool sends. Every `decode` is empty for a message that is shorter than its fields or
// whose inner lengths do not fit into it; it does not judge the command.

/// The block that command `getBlock` reads.
namespace SmhiSelector {
inline constexpr std::uint16_t calibrationData = 0x0000;
inline constexpr std::uint16_t sensorList = 0x0200;
inline constexpr std::uint16_t pdt = 0x0400;
}  // namespace SmhiSelector

/// Ids of sensor properties. Intervals are unsigned 32 bits in microseconds.
namespace SmhiProperty {
inline constexpr std::uint16_t minimumReportInterval = 0x0304;  ///< read
inline constexpr std::uint16_t reportInterval = 0x030E;
inline constexpr std::uint16_t changeSensitivity = 0x030F;  ///< signed 32 bits
inline constexpr std::uint16_t reportingState = 0x0316;     ///< 1 byte
}  // namespace SmhiProperty

/// Values of the property `reportingState`.
namespace SmhiReporting {
inline constexpr std::uint8_t stop = 1;
inline constexpr std::uint8_t start = 2;
}  // namespace SmhiReporting

/// Restarts the sensor hub: a bare header.
struct SmhiResetRequest {
    SmhiHeader header{.command = SmhiCommand::reset};

    ByteString encode() const { return header.encode(); }
    static std::optional<SmhiResetRequest> decode(ByteSpan message);

    friend bool operator==(const SmhiResetRequest&, const SmhiResetRequest&) = default;
};

/// Reads a block or a property.
///
///     0  header     4  luid     12  selector, uint16
struct SmhiGetRequest {
    static constexpr std::size_t size = 14;

    SmhiHeader header{.command = SmhiCommand::getBlock};
    Luid luid;  ///< zero where the block belongs to no sensor
    std::uint16_t selector = 0;

    ByteString encode() const;
    static std::optional<SmhiGetRequest> decode(ByteSpan message);

    friend bool operator==(const SmhiGetRequest&, const SmhiGetRequest&) = default;
};

/// Writes a property.
///
///     0  header     4  luid     12  property, uint16     14  length, uint16     16  value
struct SmhiSetPropertyRequest {
    SmhiHeader header{.command = SmhiCommand::setProperty};
    Luid luid;
    std::uint16_t property = 0;
    ByteString value;

    /// REQUIRES: a value of less than 64 KiB.
    ByteString encode() const;
    static std::optional<SmhiSetPropertyRequest> decode(ByteSpan message);

    friend bool operator==(const SmhiSetPropertyRequest&, const SmhiSetPropertyRequest&) = default;
};

/// Writes a sensor's calibration data, which is wrapped twice.
///
///      0  header           4  luid                    12  reserved, uint32
///     16  bytes from 20    20  luid again             28  bytes from 32, uint16
///     30  block id, 0x0100 32  block kind, 2          34  data length, uint16     36  data
struct SmhiSetCalibrationRequest {
    /// The longest data that the 16-bit lengths can hold.
    static constexpr std::size_t maximumData = 65531;

    SmhiHeader header{.command = SmhiCommand::setCalibration};
    Luid luid;
    ByteString calibrationData;

    /// REQUIRES: at most `maximumData` bytes of data.
    ByteString encode() const;
    /// Empty also if the lengths, the LUIDs or the block's id and kind contradict each other.
    static std::optional<SmhiSetCalibrationRequest> decode(ByteSpan message);

    friend bool operator==(const SmhiSetCalibrationRequest&,
                           const SmhiSetCalibrationRequest&) = default;
};

/// Starts or stops a recording session.
///
///     0  header     4  type, 1     5  state     6  sensor count     7  LUIDs
///
/// A stop has a count of 0 and 8 zero bytes behind it nevertheless.
struct SmhiSessionControlRequest {
    static constexpr std::uint8_t start = 0;  ///< value of `state`
    static constexpr std::uint8_t stop = 1;   ///< value of `state`

    SmhiHeader header{.command = SmhiCommand::SMHI_PNR_SESSION_CONTROL_ID};
    std::uint8_t type = 1;
    std::uint8_t state = start;
    std::vector<Luid> luids;  ///< of a start; none stands for every sensor that reports

    /// REQUIRES: fewer than 256 LUIDs, none in a stop.
    ByteString encode() const;
    static std::optional<SmhiSessionControlRequest> decode(ByteSpan message);

    friend bool operator==(const SmhiSessionControlRequest&,
                           const SmhiSessionControlRequest&) = default;
};

}  // namespace tavoren
