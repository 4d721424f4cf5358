#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "common/ByteString.h"
#include "common/Luid.h"
#include "firmware/SmhiHeader.h"

namespace tavoren {

// What the firmware answers where a header is not all. Bytes that nobody reads are sent as 0. Every
// `decode` is empty for a message that is shorter than its fields or whose inner lengths do not fit
// into it; it does not judge the command or the status.

/// Answer to the selector `calibrationData`.
///
///     0  header     22  length, uint16     24  data
struct SmhiCalibrationResponse {
    SmhiHeader header{.command = SmhiCommand::getBlock, .is_response = true};
    ByteString calibrationData;

    /// REQUIRES: data that keeps the message within `maximumMessageSize`.
    ByteString encode() const;
    static std::optional<SmhiCalibrationResponse> decode(ByteSpan message);

    friend bool operator==(const SmhiCalibrationResponse&,
                           const SmhiCalibrationResponse&) = default;
};

/// Answer to the selector `sensorList`.
///
///     0  header     8  number of groups, 1 byte     10  groups, one after the other
///     a group:      11  number of LUIDs, 1 byte     12  LUIDs
struct SmhiSensorListResponse {
    SmhiHeader header{.command = SmhiCommand::getBlock, .is_response = true};
    std::vector<std::vector<Luid>> groups;

    /// All LUIDs in order.
    std::vector<Luid> luids() const;
    /// REQUIRES: fewer than 256 groups of fewer than 256 LUIDs.
    ByteString encode() const;
    static std::optional<SmhiSensorListResponse> decode(ByteSpan message);

    friend bool operator==(const SmhiSensorListResponse&, const SmhiSensorListResponse&) = default;
};

/// Answer to the selector `pdt`, the description of the platform.
///
///     0  header     9  form factor     13  hinge
struct SmhiPdtResponse {
    SmhiHeader header{.command = SmhiCommand::getBlock, .is_response = true};
    std::uint8_t formFactor = 0;
    std::uint8_t hinge = 0;

    ByteString encode() const;
    static std::optional<SmhiPdtResponse> decode(ByteSpan message);

    friend bool operator==(const SmhiPdtResponse&, const SmhiPdtResponse&) = default;
};

/// Answer to command `getProperty`.
///
///     0  header     8  value, uint32
struct SmhiPropertyResponse {
    SmhiHeader header{.command = SmhiCommand::getProperty, .is_response = true};
    std::uint32_t value = 0;

    ByteString encode() const;
    static std::optional<SmhiPropertyResponse> decode(ByteSpan message);

    friend bool operator==(const SmhiPropertyResponse&, const SmhiPropertyResponse&) = default;
};

}  // namespace tavoren
