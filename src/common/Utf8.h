#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavoren {

/// UTF-8 as wide text: a code point beyond 16 bits is one wide character where those have 32 bits,
/// a surrogate pair where they have 16. Empty for malformed input (overlong forms, surrogates and
/// numbers above U+10FFFF among it).
std::optional<std::wstring> fromUtf8(std::string_view bytes);

/// Wide text as UTF-8; empty if it holds a lone surrogate or a number above U+10FFFF.
std::optional<std::string> toUtf8(std::wstring_view text);

/// Wide text as UTF-8 for messages: what has no UTF-8 form becomes U+FFFD.
std::string toUtf8Lossy(std::wstring_view text);

/// ASCII text as wide text; every byte becomes one character.
std::wstring widen(std::string_view text);

}  // namespace tavoren
