#pragma once

#include "common/ByteString.h"

namespace tavoren {

class XmlElement;

/// Adds the opaque form of calibration data to a `CalibrationData` element: `OEMCustomData` with
/// the bytes behind format and version in hexadecimal. Throws `CalibrationException` "Invalid
/// calibration data size" for less than those two bytes.
void addOemCustomData(XmlElement& calibrationData, const ByteString& record);

}  // namespace tavoren
