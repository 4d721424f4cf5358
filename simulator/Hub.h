#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "simulator/Connection.h"
#include "simulator/DeviceEntry.h"
#include "simulator/Firmware.h"
#include "simulator/Pace.h"
#include "simulator/StopSignal.h"

namespace tavoren::simulator {

/// Serves a simulated device in the folder of devices until a signal ends it. One thread.
class Hub {
  public:
    /// Both outlive the hub. Throws as `DeviceEntry` and `Firmware`.
    Hub(Device& device, const Options& options);

    void run();

  private:
    void waitForWork();
    std::optional<Pace::Clock::time_point> nextPublish();
    void accept();
    void serve(Connection& connection);
    void openClient(Connection& connection, ByteSpan input) const;
    void answer(Connection& connection, ByteSpan message);
    void publish();
    void beginMovement();
    void readOperator();
    void dropClosed();
    void sendMessage(Connection& connection, ByteSpan message) const;
    static void show(const std::string& line);

    const Options& options;
    Firmware firmware;
    StopSignal stopSignal;
    DeviceEntry entry;
    std::vector<std::unique_ptr<Connection>> connections;
    Connection* recorder = nullptr;  // the connection of the session
    std::optional<Pace> pace;
    std::size_t shownMovement = 0;
    /// Of the movement that is due, where the operator begins each.
    enum class Release { none, awaited, given } release = Release::none;
    Pace::Clock::time_point restDue;  // the next samples while the operator is awaited
};

}  // namespace tavoren::simulator
