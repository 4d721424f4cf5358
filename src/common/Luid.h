#pragma once

#include <cstdint>
#include <string>

namespace tavoren {

/// The 64-bit address of a firmware sensor.
struct Luid {
    std::uint16_t SensorTypeId = 0;
    std::uint16_t VendorId = 0;
    std::uint16_t SubTypeId = 0;
    std::uint8_t InstanceId = 0;  ///< 0: the primary sensor of its type, any other: the second one
    std::uint8_t Flags = 0;

    static constexpr std::uint8_t dynamicData = 1;  ///< bit of `Flags`
    static constexpr std::uint8_t staticData = 2;   ///< bit of `Flags`

    bool hasDynamicData() const { return (Flags & dynamicData) != 0; }
    bool hasStaticData() const { return (Flags & staticData) != 0; }

    /// The number whose bytes, low ones first, are the fields in order.
    std::uint64_t value() const;
    static Luid fromValue(std::uint64_t value);

    friend bool operator==(const Luid&, const Luid&) = default;
};

/// 16 lower-case hexadecimal digits, each field printed as a number: "0073000000000002".
std::string luidToString(const Luid& luid);

}  // namespace tavoren
