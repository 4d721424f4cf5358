#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "common/CalibrationException.h"
#include "common/Text.h"
#include "common/Utf8.h"
#include "files/xml/XmlElement.h"

namespace tavoren {

// What the readers of calibration data share.

/// Wide text for messages and number parsing.
inline std::string narrow(std::wstring_view text) {
    return toUtf8Lossy(text);
}

/// A base 10 integer over the whole text; throws `CalibrationException`.
inline std::int32_t integerOf(std::wstring_view text) {
    return parseInteger(narrow(text));
}

/// The child element of this name in any case; null for none.
inline std::shared_ptr<XmlElement> childElement(const XmlNode& node, std::wstring_view name) {
    return std::dynamic_pointer_cast<XmlElement>(node.findChild(name));
}

/// Throws `CalibrationException` "XML parsing error. " and the reason.
[[noreturn]] inline void refuseXml(const std::string& reason) {
    throw CalibrationException("XML parsing error. " + reason);
}

}  // namespace tavoren
