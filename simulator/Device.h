#pragma once

#include <string>
#include <vector>

#include "simulator/RecordStore.h"
#include "simulator/SensorModel.h"
#include "simulator/World.h"

namespace tavoren::simulator {

/// What a simulated device is built from.
struct DevicePlan {
    std::vector<std::string> sensors{"A", "G", "M", "L"};  ///< letters of `sensorKinds`
    unsigned seed = 1;
    Errors errors = Errors::full;
    double noiseFactor = 1.0;
    std::uint8_t formFactor = 0;
    std::uint8_t hinge = 0;
    World world;
};

/// A device: its sensors, its surroundings and the records in its firmware.
class Device {
  public:
    explicit Device(const DevicePlan& plan);

    const World& world() const { return surroundings; }
    /// The sensors of the plan in the order of `sensorKinds`; behind them, not listed, the
    /// accelerometer without a record that a sequence asks for when it steers by no other.
    std::vector<SensorModel>& sensors() { return models; }
    const std::vector<SensorModel>& sensors() const { return models; }
    std::vector<Luid> listed() const;
    RecordStore& records() { return store; }
    const RecordStore& records() const { return store; }
    /// The sensor of a LUID; null if there is none.
    SensorModel* find(const Luid& luid);

    /// Restarts the firmware: the stored records come into use.
    void reset();

  private:
    World surroundings;
    std::vector<SensorModel> models;
    std::size_t listedCount = 0;
    RecordStore store;
};

}  // namespace tavoren::simulator
