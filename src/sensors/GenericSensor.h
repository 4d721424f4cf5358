#pragma once

#include "sensors/Sensor.h"

namespace tavoren {

/// A sensor without an algorithm: carried through export and import with whatever data it has.
class GenericSensor final : public Sensor {
  public:
    using Sensor::Sensor;

    /// Any `FormatId` passes.
    void validateCalibrationData(const ByteString& bytes) const override;
    /// Throws `CalibrationException`: there is no format to read.
    void loadCalibrationXml(const XmlElement& element, std::uint8_t id,
                            std::uint8_t version) override;
    /// Writes what this run imported, else what the firmware holds, as `OEMCustomData`.
    void saveCalibrationXml(XmlElement& element, const ByteString& record) const override;
};

}  // namespace tavoren
