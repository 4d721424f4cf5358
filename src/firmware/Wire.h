#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>
#include <utility>

#include "common/ByteString.h"
#include "common/Luid.h"

namespace tavoren {

/// Received bytes that somebody else holds.
using ByteSpan = std::span<const std::uint8_t>;

/// Appends packed little-endian fields to a message.
class WireWriter {
  public:
    template <typename Integer>
    WireWriter& number(Integer value) {
        const auto bits = static_cast<std::make_unsigned_t<Integer>>(value);
        for (std::size_t k = 0; k < sizeof(Integer); ++k)
            bytes.push_back(static_cast<std::uint8_t>(bits >> (8 * k)));
        return *this;
    }
    WireWriter& luid(const Luid& value) { return number(value.value()); }
    WireWriter& zeros(std::size_t count) {
        bytes.resize(bytes.size() + count);
        return *this;
    }
    WireWriter& data(ByteSpan value) {
        bytes.insert(bytes.end(), value.begin(), value.end());
        return *this;
    }
    ByteString take() { return std::move(bytes); }

  private:
    ByteString bytes;
};

/// Takes packed little-endian fields from the front of a message. A field that is not wholly there
/// reads as zero, and so does all that follows it; `isGood` then is false.
class WireReader {
  public:
    explicit WireReader(ByteSpan message) : rest(message) {}

    template <typename Integer>
    Integer number() {
        using Unsigned = std::make_unsigned_t<Integer>;
        Unsigned value = 0;
        const ByteSpan field = data(sizeof(Integer));
        for (std::size_t k = 0; k < field.size(); ++k)
            value = static_cast<Unsigned>(value | static_cast<Unsigned>(field[k]) << (8 * k));
        return static_cast<Integer>(value);
    }
    Luid luid() { return Luid::fromValue(number<std::uint64_t>()); }
    WireReader& skip(std::size_t count) {
        data(count);
        return *this;
    }
    /// Exactly `count` bytes, or none.
    ByteSpan data(std::size_t count) {
        good = good && count <= rest.size();
        if (!good)
            return {};
        const ByteSpan front = rest.first(count);
        rest = rest.subspan(count);
        return front;
    }
    /// Whether every field so far was there.
    bool isGood() const { return good; }
    ByteSpan remaining() const { return rest; }

  private:
    ByteSpan rest;
    bool good = true;
};

}  // namespace tavoren
