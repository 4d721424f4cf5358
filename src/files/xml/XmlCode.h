#pragma once

/// Results of the XML library. Nothing is printed or thrown; the caller has its own text for every
/// code but `success`.
namespace tavoren::XmlCode {

constexpr int success = 0;
constexpr int emptyPath = 1;
constexpr int fileFailure = 2;  ///< not to be opened, read, written or converted
constexpr int badName = 5;
constexpr int endTagMismatch = 6;
constexpr int badStart = 7;  ///< a comment or declaration without its opening token
constexpr int noParser = 8;
constexpr int unsupported = 9;  ///< CDATA, markup declaration, too deep, or a node of no length

}  // namespace tavoren::XmlCode
