#include "sensors/GenericSensor.h"

#include "common/CalibrationException.h"
#include "sensors/OemCustomData.h"

namespace tavoren {

void GenericSensor::validateCalibrationData(const ByteString& bytes) const {
    if (!isCustomFormat(formatOf(bytes)))
        checkDataSize(bytes);
}

void GenericSensor::loadCalibrationXml(const XmlElement&, std::uint8_t, std::uint8_t) {
    throw CalibrationException("Error. No calibration data format is available");
}

void GenericSensor::saveCalibrationXml(XmlElement& element, const ByteString&) const {
    addOemCustomData(element, calibrationData.empty() ? firmwareData : calibrationData);
}

}  // namespace tavoren
