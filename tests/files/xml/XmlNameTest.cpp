#include "files/xml/XmlName.h"

#include <gtest/gtest.h>

namespace tavoren {
namespace {

// The two patterns as ranges, first and last character in turn.
constexpr std::u32string_view startPairs =
    U"::AZ__az\u00C0\u00D6\u00D8\u00F6\u00F8\u02FF\u0370\u037D\u037F\u1FFF\u200C\u200D\u2070\u218F"
    U"\u2C00\u2FEF\u3001\uD7FF\uF900\uFDCF\uFDF0\uFFFD";
constexpr std::u32string_view laterPairs = U"--..09\u00B7\u00B7\u0300\u036F\u203F\u2040";

bool inPairs(std::u32string_view pairs, char32_t c) {
    for (std::size_t i = 0; i < pairs.size(); i += 2) {
        if (c >= pairs[i] && c <= pairs[i + 1])
            return true;
    }
    return false;
}

TEST(XmlName, AcceptsExactlyThePatterns) {
    for (char32_t c = 0; c <= 0x10FFFF; c += c < 0x10000 ? 1 : 0x101) {
        const auto wide = static_cast<wchar_t>(c);
        const bool start = inPairs(startPairs, c);
        ASSERT_EQ(isXmlNameStart(wide), start) << std::hex << std::uint32_t{c};
        ASSERT_EQ(isXmlNameCharacter(wide), start || inPairs(laterPairs, c)) << std::hex << std::uint32_t{c};
    }
}

}  // namespace
}  // namespace tavoren
