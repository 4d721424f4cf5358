#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "common/ByteString.h"
#include "common/Luid.h"
#include "firmware/SmhiHeader.h"

namespace tavoren {

/// One sample of a published buffer; the values stay where they were received.
///
///     0  total length, 1 byte     1  luid     9  time stamp, uint64     17  values, int32 each
struct SmhiSampleRecord {
    static constexpr std::size_t fixedSize = 17;
    static constexpr std::size_t maximumValues = 59;  ///< in a length of one byte

    std::uint64_t luid = 0;
    std::uint64_t timeStamp = 0;  ///< microseconds
    ByteSpan valueBytes;

    std::size_t valueCount() const { return valueBytes.size() / sizeof(std::int32_t); }
    /// REQUIRES: index < valueCount().
    std::int32_t value(std::size_t index) const;

    /// Appends a record to a payload. REQUIRES: at most `maximumValues` values.
    static void append(ByteString& payload, const Luid& luid, std::uint64_t timeStamp,
                       std::span<const std::int32_t> values);
    /// Takes the record at the front of `payload` off; empty at the end, and at a record that is
    /// shorter than its fields or longer than the payload.
    static std::optional<SmhiSampleRecord> takeFrom(ByteSpan& payload);
};

/// A buffer of samples that the firmware sends on its own during a session.
///
///     0  header     4  payload length, uint32     8  sample records
struct SmhiPublishBuffer {
    static constexpr std::size_t payloadAt = 8;
    static constexpr std::size_t maximumPayload = maximumMessageSize - payloadAt;

    ByteSpan payload;  ///< not owned

    ByteString encode() const;
    /// Empty without a whole payload length; the payload is cut to the bytes that are there.
    static std::optional<SmhiPublishBuffer> decode(ByteSpan message);
};

}  // namespace tavoren
