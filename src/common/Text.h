#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavoren {

// Text helpers whose answers do not depend on the locale or on the platform's C library.

/// Tab to carriage return, and the blank: the white space of the "C" locale.
bool isSpace(wchar_t c);
/// ASCII lower case; every other character as it is.
char toLower(char c);
wchar_t toLower(wchar_t c);
std::string toLower(std::string text);

/// Equal but for the case of ASCII letters.
bool equalsIgnoringCase(std::string_view a, std::string_view b);
bool equalsIgnoringCase(std::wstring_view a, std::wstring_view b);

/// The text without white space at both ends.
std::string_view trim(std::string_view text);

/// A base 10 integer over the whole text: leading blanks and a sign pass, an empty text is 0, too
/// large a number is the nearest 32-bit one. Throws `CalibrationException` "Conversion error. Value
/// ... is not a valid number".
std::int32_t parseInteger(std::string_view text);

/// What the C `atoi` gives with a 32-bit `long`: the leading integer, 0 for none, saturating.
std::int32_t leadingInteger(std::string_view text);

/// A double over the whole text, as the C `strtod` reads it in the "C" locale. Throws
/// `CalibrationException` "Conversion error. Value ... is not a valid double".
double parseDouble(std::string_view text);

/// The number in the `%f` form; every not-a-number is "nan".
std::string formatNumber(double value);
/// Appends the same text.
void appendNumber(std::string& text, double value);

/// The number with six significant digits, as a stream prints it by default.
std::string formatGeneral(double value);

/// Two lower-case hexadecimal digits.
void appendHex(std::string& text, std::uint8_t byte);
std::string toHex(const std::vector<std::uint8_t>& bytes);

/// Up to two characters as one byte, the way a scan of "%2hhx" reads them: leading blanks, a sign
/// and the digits up to the width; 0 where there is no digit.
std::uint8_t scanHexByte(std::string_view pair);
/// The text in pairs, one byte each; a single last character is read by itself.
std::vector<std::uint8_t> scanHex(std::string_view text);

/// The double cut toward zero; beyond the 32-bit range the nearest end of it, 0 for not-a-number.
std::int32_t truncateToInt32(double value);

}  // namespace tavoren
