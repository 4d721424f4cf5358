#pragma once

#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include "sensors/Sensor.h"
#include "simulator/FirmwareRecord.h"
#include "simulator/Script.h"
#include "simulator/SensorKind.h"
#include "simulator/TrueSensor.h"
#include "simulator/World.h"

namespace tavoren::simulator {

/// One sensor of the simulated device: what it was built as, and what the firmware publishes of it.
class SensorModel {
  public:
    /// `noiseSeed` starts the sensor's own noise.
    SensorModel(const SensorKind& kindOfSensor, TrueSensor built, unsigned noiseSeed);

    const SensorKind& kind() const { return *sensorKind; }
    const TrueSensor& truth() const { return trueSensor; }
    /// The sensor as the tool describes it: names, units, number of values.
    const std::shared_ptr<Sensor>& description() const { return described; }
    const Luid& luid() const { return sensorKind->luid; }

    /// What the firmware corrects a reading by from now on. Throws `CalibrationException` for a
    /// record that is too short.
    void useRecord(const ByteString& record) { correction = correctionOf(*described, record); }

    /// The next reading with noise, corrected and put on the integer grid of the protocol.
    std::vector<std::int32_t> publish(const Moment& moment, const World& world);
    /// The same in the unit of the sensor's data.
    SampleValues reading(const Moment& moment, const World& world);

  private:
    Vector rawReading(const Moment& moment, const World& world);
    double noise();

    const SensorKind* sensorKind;
    TrueSensor trueSensor;
    std::shared_ptr<Sensor> described;
    Correction correction;
    std::mt19937 random;
    std::normal_distribution<double> spread{0.0, 1.0};
};

}  // namespace tavoren::simulator
