#pragma once

#include <cstdint>
#include <memory>
#include <span>

namespace tavoren {

class Sensor;

/// Who takes the samples of a recording. Everything here is called on the recording's worker.
class SampleReceiver {
  public:
    /// The sensor with this LUID, as a number; null if it takes no part.
    virtual std::shared_ptr<Sensor> findSensor(std::uint64_t luid) const = 0;
    /// What a raw value of the sensor is divided by.
    virtual std::int32_t rawDivisorOf(const Sensor& sensor) const = 0;
    /// One sample; the time in ms.
    virtual void handleData(const std::shared_ptr<Sensor>& sensor, double time,
                            std::span<const double> values) = 0;
    /// Ends the running stage, well or not.
    virtual void stageDone(bool status) = 0;

  protected:
    SampleReceiver() = default;
    SampleReceiver(const SampleReceiver&) = default;
    SampleReceiver& operator=(const SampleReceiver&) = default;
    ~SampleReceiver() = default;
};

}  // namespace tavoren
