#include "files/xml/XmlReferences.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string_view>

namespace tavoren {

namespace {

struct Reference {
    std::size_t length = 0;  // 0: no reference
    wchar_t character = 0;
};

constexpr std::size_t maxDigits = 5;

/// The digit's value, or 16 for any other character.
std::uint32_t digitValue(wchar_t c) {
    const auto code = static_cast<char32_t>(c);
    if (code >= '0' && code <= '9')
        return code - '0';
    const char32_t lower = code | 0x20;
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : 16;
}

std::uint32_t numberOf(std::wstring_view digits, std::uint32_t base) {
    if (digitValue(digits.front()) >= base)
        throw std::invalid_argument("invalid stoi argument");
    std::uint32_t number = 0;
    for (const wchar_t c : digits) {
        if (digitValue(c) >= base)
            break;
        number = number * base + digitValue(c);
    }
    return number;
}

/// The numeric reference at the start of `text`, which begins with "&".
Reference numericReference(std::wstring_view text) {
    std::size_t at = 1;
    if (text.substr(at, 1) != L"#")
        return {};
    ++at;
    const bool hexadecimal = text.substr(at, 1) == L"x" || text.substr(at, 1) == L"X";
    at += hexadecimal ? 1 : 0;
    std::size_t digits = 0;
    while (digits < maxDigits && at + digits < text.size() && digitValue(text[at + digits]) < 16)
        ++digits;
    if (digits == 0 || text.substr(at + digits, 1) != L";")
        return {};
    const std::uint32_t number = numberOf(text.substr(at, digits), hexadecimal ? 16 : 10);
    return {at + digits + 1, static_cast<wchar_t>(number & 0xFFFF)};
}

struct NamedCharacter {
    std::wstring_view reference;
    wchar_t character;
};

constexpr std::array namedCharacters{
    NamedCharacter{L"&quot;", L'"'},  NamedCharacter{L"&gt;", L'>'},
    NamedCharacter{L"&lt;", L'<'},    NamedCharacter{L"&amp;", L'&'},
    NamedCharacter{L"&apos;", L'\''},
};

Reference namedReference(std::wstring_view text) {
    for (const auto& [reference, character] : namedCharacters) {
        if (text.substr(0, reference.size()) == reference)
            return {reference.size(), character};
    }
    return {};
}

std::wstring replaceAll(std::wstring_view text, Reference (*find)(std::wstring_view)) {
    std::wstring result;
    while (!text.empty()) {
        const std::wstring_view plain = text.substr(0, text.find(L'&'));
        result += plain;
        text.remove_prefix(plain.size());
        if (text.empty())
            break;
        const Reference reference = find(text);
        result += reference.length == 0 ? L'&' : reference.character;
        text.remove_prefix(reference.length == 0 ? 1 : reference.length);
    }
    return result;
}

}  // namespace

std::wstring decodeReferences(std::wstring text) {
    if (text.find(L'&') == std::wstring::npos)
        return text;
    return replaceAll(replaceAll(text, numericReference), namedReference);
}

}  // namespace tavoren
