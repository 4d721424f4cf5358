#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <vector>

#include "common/ByteString.h"
#include "simulator/Device.h"
#include "simulator/Faults.h"
#include "simulator/Script.h"

namespace tavoren::simulator {

/// Report intervals in microseconds of the sensors that report, by the value of their LUID.
using Reporting = std::map<std::uint64_t, std::uint32_t>;

/// A recording session: plays its script and cuts what the reporting sensors see into messages.
/// Time is sample time; whoever asks for the next messages decides how fast it runs.
class Session {
  public:
    /// Samples that go out together.
    static constexpr std::chrono::microseconds window{40000};

    /// `reporting` may change while the session goes on; it and the device outlive the session.
    Session(Device& device, const Reporting& reporting, Script script, const Faults& faults);

    const Script& script() const { return played; }
    /// How far the script is played, in seconds of sample time.
    double seconds() const { return static_cast<double>(now - held) * 1e-6; }
    /// The published buffers of the next `window`, and what faults put among them. The script
    /// stands still while it is held.
    std::vector<ByteString> next(bool isHeld = false);
    /// The fault that breaks the connection is due.
    bool isBroken() const;

  private:
    struct Due {
        std::uint64_t time;
        SensorModel* sensor;
    };
    std::vector<Due> dueUntil(std::uint64_t end);
    bool isSilent(const Luid& luid) const;
    void append(ByteString& payload, const Due& due, bool isHeld);
    ByteString finish(ByteString& payload) const;

    Device& device;
    const Reporting& reporting;
    Script played;
    const Faults& faults;
    std::uint64_t now = 0;   // microseconds
    std::uint64_t held = 0;  // of them the script stood still
};

}  // namespace tavoren::simulator
