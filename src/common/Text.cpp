#include "common/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "common/CalibrationException.h"

namespace tavoren {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isSpace(char c) {
    return tavoren::isSpace(static_cast<wchar_t>(static_cast<unsigned char>(c)));
}

int hexDigit(char c) {
    if (isDigit(c))
        return c - '0';
    const char lower = toLower(c);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

struct ScannedInteger {
    std::int32_t value;  // saturated
    std::size_t length;  // characters taken, blanks and sign included; 0 without a digit
};

ScannedInteger scanInteger(std::string_view text) {
    std::size_t at = 0;
    while (at < text.size() && isSpace(text[at]))
        ++at;
    const bool negative = at < text.size() && text[at] == '-';
    if (at < text.size() && (text[at] == '-' || text[at] == '+'))
        ++at;
    const std::size_t firstDigit = at;
    constexpr std::int64_t beyond = std::int64_t{1} << 32;
    std::int64_t value = 0;
    for (; at < text.size() && isDigit(text[at]); ++at)
        value = std::min(beyond, value * 10 + (text[at] - '0'));
    if (at == firstDigit)
        return {0, 0};
    using Limits = std::numeric_limits<std::int32_t>;
    value = std::clamp<std::int64_t>(negative ? -value : value, Limits::min(), Limits::max());
    return {static_cast<std::int32_t>(value), at};
}

void append(std::string& text, double value, std::chars_format form) {
    if (std::isnan(value)) {
        text += "nan";
        return;
    }
    // The largest double has 309 digits before the point; clearing it would cost more than the
    // text.
    std::array<char, 512> buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init)
    const auto written =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, form, 6);
    text.append(buffer.data(), written.ptr);
}

template <typename Text>
bool equalFolded(Text a, Text b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](auto x, auto y) { return toLower(x) == toLower(y); });
}

}  // namespace

bool isSpace(wchar_t c) {
    return c == L' ' || (c >= L'\t' && c <= L'\r');
}

char toLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

wchar_t toLower(wchar_t c) {
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}

std::string toLower(std::string text) {
    for (char& c : text)
        c = toLower(c);
    return text;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return equalFolded(a, b);
}

bool equalsIgnoringCase(std::wstring_view a, std::wstring_view b) {
    return equalFolded(a, b);
}

std::string_view trim(std::string_view text) {
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

std::int32_t parseInteger(std::string_view text) {
    const ScannedInteger scanned = scanInteger(text);
    if (scanned.length != text.size())
        throw CalibrationException("Conversion error. Value " + std::string(text) +
                                   " is not a valid number");
    return scanned.value;
}

std::int32_t leadingInteger(std::string_view text) {
    return scanInteger(text).value;
}

double parseDouble(std::string_view text) {
    double value = 0.0;
    const char* const last = text.data() + text.size();
    if (!text.empty() && (isDigit(text[0]) || text[0] == '-')) {
        const auto [end, error] = std::from_chars(text.data(), last, value);
        if (error == std::errc{} && end == last)
            return value;
    }
    // Blanks, plus signs, hexadecimal forms and numbers out of range: as the C library reads them.
    const std::string terminated(text);
    char* end = nullptr;
    value = std::strtod(terminated.c_str(), &end);
    if (text.empty() || end != terminated.c_str() + terminated.size())
        throw CalibrationException("Conversion error. Value " + terminated +
                                   " is not a valid double");
    return value;
}

std::string formatNumber(double value) {
    std::string text;
    appendNumber(text, value);
    return text;
}

void appendNumber(std::string& text, double value) {
    append(text, value, std::chars_format::fixed);
}

std::string formatGeneral(double value) {
    std::string text;
    append(text, value, std::chars_format::general);
    return text;
}

void appendHex(std::string& text, std::uint8_t byte) {
    constexpr std::string_view digits = "0123456789abcdef";
    text += digits[byte >> 4];
    text += digits[byte & 15];
}

std::string toHex(const std::vector<std::uint8_t>& bytes) {
    std::string text;
    text.reserve(2 * bytes.size());
    for (const std::uint8_t byte : bytes)
        appendHex(text, byte);
    return text;
}

std::uint8_t scanHexByte(std::string_view pair) {
    std::size_t at = 0;
    while (at < pair.size() && isSpace(pair[at]))
        ++at;
    const bool negative = at < pair.size() && pair[at] == '-';
    if (at < pair.size() && (pair[at] == '-' || pair[at] == '+'))
        ++at;
    int value = 0;
    for (; at < pair.size() && hexDigit(pair[at]) >= 0; ++at)
        value = value * 16 + hexDigit(pair[at]);
    return static_cast<std::uint8_t>(negative ? -value : value);
}

std::vector<std::uint8_t> scanHex(std::string_view text) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(text.size() / 2 + 1);
    for (std::size_t at = 0; at < text.size(); at += 2)
        bytes.push_back(scanHexByte(text.substr(at, 2)));
    return bytes;
}

std::int32_t truncateToInt32(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(value))
        return 0;
    if (value >= static_cast<double>(Limits::max()))
        return Limits::max();
    if (value <= static_cast<double>(Limits::min()))
        return Limits::min();
    return static_cast<std::int32_t>(value);
}

}  // namespace tavoren
