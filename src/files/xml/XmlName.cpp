#include "files/xml/XmlName.h"

#include <algorithm>
#include <array>

namespace tavoren {

namespace {

struct Range {
    char32_t first;
    char32_t last;
};

constexpr std::array startRanges{
    Range{':', ':'},       Range{'A', 'Z'},       Range{'_', '_'},       Range{'a', 'z'},
    Range{0xC0, 0xD6},     Range{0xD8, 0xF6},     Range{0xF8, 0x2FF},    Range{0x370, 0x37D},
    Range{0x37F, 0x1FFF},  Range{0x200C, 0x200D}, Range{0x2070, 0x218F}, Range{0x2C00, 0x2FEF},
    Range{0x3001, 0xD7FF}, Range{0xF900, 0xFDCF}, Range{0xFDF0, 0xFFFD},
};

constexpr std::array laterRanges{
    Range{'-', '-'},   Range{'.', '.'},     Range{'0', '9'},
    Range{0xB7, 0xB7}, Range{0x300, 0x36F}, Range{0x203F, 0x2040},
};

template <typename Ranges>
bool contains(const Ranges& ranges, wchar_t c) {
    const auto code = static_cast<char32_t>(c);
    return std::any_of(ranges.begin(), ranges.end(), [code](const Range& range) {
        return code >= range.first && code <= range.last;
    });
}

}  // namespace

bool isXmlNameStart(wchar_t c) {
    return contains(startRanges, c);
}

bool isXmlNameCharacter(wchar_t c) {
    return isXmlNameStart(c) || contains(laterRanges, c);
}

}  // namespace tavoren
