#pragma once

#include <string>

namespace tavoren {

/// The text with its character references replaced in two passes, numeric ones first, so that
/// "&#38;lt;" becomes "<". A number has one to five hexadecimal digits, is read in base 16 only
/// behind an x, up to its first other digit, and is cut to 16 bits; the names are amp, gt, lt, quot
/// and apos; anything else stays. Throws `std::invalid_argument` "invalid stoi argument" for a
/// decimal reference that does not begin with a decimal digit.
std::wstring decodeReferences(std::wstring text);

}  // namespace tavoren
