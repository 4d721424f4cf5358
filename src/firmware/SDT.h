#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "common/ByteString.h"
#include "common/Luid.h"

namespace tavoren {

class BraxBase;
struct SmhiHeader;
struct SmhiPdtResponse;

/// A sensor that is to report, with the name that a failure tells.
struct SampledSensor {
    Luid luid;
    std::string displayName;
};

/// The commands of the firmware link, each one short conversation with the sensor hub on a
/// connection of its own.
///
/// A bad status, and an answer that is shorter than what is read from it, throw `SmhiException`
/// with the command's text; exceptions of the transport pass. Objects of this class are cheap and
/// are made where they are needed.
class SDT {
  public:
    /// Talks to the device of the bus driver.
    SDT();
    explicit SDT(std::shared_ptr<BraxBase> transport);

    /// Restarts the sensor hub.
    void resetTvn();
    /// Writes a sensor's record; empty data needs no conversation.
    void setCalibrationData(const Luid& sensor, const ByteString& calibrationData);
    ByteString getCalibrationData(const Luid& sensor);
    std::vector<Luid> enumerateSensors();
    /// Starts reporting at the interval (ms), each sensor in turn. Throws `CalibrationException`
    /// "Failed to sample sensor " and the name if a sensor's conversation fails.
    void startSampling(const std::vector<SampledSensor>& sensors, std::uint32_t reportInterval,
                       double sensitivity);
    /// Stops reporting; sensors behind one that fails keep on.
    void stopSampling(const std::vector<Luid>& sensors);
    std::uint8_t getFormFactor();
    std::uint8_t getHinge();
    /// The shortest report interval of a sensor in whole milliseconds.
    std::uint32_t getMinReportInterval(const Luid& sensor);

  private:
    ByteString converse(const ByteString& request);
    ByteString command(const ByteString& request);
    SmhiPdtResponse readPdt();
    void setProperty(const Luid& sensor, std::uint16_t property,
                     std::span<const std::uint8_t> value);
    void closeQuietly() noexcept;

    std::shared_ptr<BraxBase> transport;
};

}  // namespace tavoren
