#include "common/Utf8.h"

#include <cstddef>
#include <cstdint>

namespace tavoren {

namespace {

constexpr bool wideIs16Bits = sizeof(wchar_t) == 2;
constexpr char32_t lastCodePoint = 0x10FFFF;

bool isSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

void appendWide(std::wstring& text, char32_t c) {
    if (wideIs16Bits && c > 0xFFFF) {
        text += static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10));
        text += static_cast<wchar_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
    } else {
        text += static_cast<wchar_t>(c);
    }
}

void appendUtf8(std::string& bytes, char32_t c) {
    const auto add = [&bytes](char32_t byte) { bytes += static_cast<char>(byte); };
    if (c < 0x80) {
        add(c);
    } else if (c < 0x800) {
        add(0xC0 | c >> 6);
        add(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        add(0xE0 | c >> 12);
        add(0x80 | (c >> 6 & 0x3F));
        add(0x80 | (c & 0x3F));
    } else {
        add(0xF0 | c >> 18);
        add(0x80 | (c >> 12 & 0x3F));
        add(0x80 | (c >> 6 & 0x3F));
        add(0x80 | (c & 0x3F));
    }
}

/// The code point at `at`, which moves behind it; lone surrogates and numbers beyond the last code
/// point come out as they stand. Pairs count as one everywhere: numeric references can give them.
char32_t nextCodePoint(std::wstring_view text, std::size_t& at) {
    const auto unit = [text](std::size_t i) {
        const auto c = static_cast<char32_t>(text[i]);
        return wideIs16Bits ? c & 0xFFFF : c;
    };
    const char32_t c = unit(at++);
    if (c >= 0xD800 && c <= 0xDBFF && at < text.size()) {
        const char32_t low = unit(at);
        if (low >= 0xDC00 && low <= 0xDFFF) {
            ++at;
            return 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
        }
    }
    return c;
}

}  // namespace

std::optional<std::wstring> fromUtf8(std::string_view bytes) {
    std::wstring text;
    text.reserve(bytes.size());
    const auto byte = [bytes](std::size_t i) {
        return char32_t{static_cast<unsigned char>(bytes[i])};
    };
    for (std::size_t at = 0; at < bytes.size();) {
        const char32_t first = byte(at++);
        if (first < 0x80) {
            text += static_cast<wchar_t>(first);
            continue;
        }
        const int more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
        if (first < 0xC2 || first > 0xF4 || bytes.size() - at < static_cast<std::size_t>(more))
            return std::nullopt;
        char32_t c = first & (0x3Fu >> more);
        for (int k = 0; k < more; ++k, ++at) {
            if ((byte(at) & 0xC0) != 0x80)
                return std::nullopt;
            c = c << 6 | (byte(at) & 0x3F);
        }
        const bool overlong = (more == 2 && c < 0x800) || (more == 3 && c < 0x10000);
        if (overlong || isSurrogate(c) || c > lastCodePoint)
            return std::nullopt;
        appendWide(text, c);
    }
    return text;
}

std::optional<std::string> toUtf8(std::wstring_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = nextCodePoint(text, at);
        if (isSurrogate(c) || c > lastCodePoint)
            return std::nullopt;
        appendUtf8(bytes, c);
    }
    return bytes;
}

std::string toUtf8Lossy(std::wstring_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = nextCodePoint(text, at);
        appendUtf8(bytes, isSurrogate(c) || c > lastCodePoint ? U'\uFFFD' : c);
    }
    return bytes;
}

std::wstring widen(std::string_view text) {
    std::wstring wide;
    wide.reserve(text.size());
    for (const char c : text)
        wide += static_cast<wchar_t>(static_cast<unsigned char>(c));
    return wide;
}

}  // namespace tavoren
