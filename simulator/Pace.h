#pragma once

#include <chrono>
#include <cstddef>

#include "simulator/Script.h"

namespace tavoren::simulator {

/// Tells when a moment of a script is due by the clock.
///
/// A rest lasts at least the hold time at any speed: the tool's main thread learns of the end of a
/// step by a single flag, so that two steps that end before it looks again would count as one.
/// Behind the end of the script time runs as at real speed or as chosen, not faster.
class Pace {
  public:
    using Clock = std::chrono::steady_clock;

    /// `speed` is a multiple of real time, 0 for no waiting at all.
    Pace(double speed, std::chrono::milliseconds hold);

    /// When the sample time `time` (seconds) is due. Times must ascend.
    Clock::time_point due(const Script& script, double time, Clock::time_point now);
    /// What was due by the last call is due at `now` instead.
    void restart(Clock::time_point now) { beganAt = lastDue = now; }
    /// The movement of the last call.
    std::size_t movement() const { return current; }

  private:
    double factor(const Script& script) const;

    double speed;
    double hold;  // seconds
    std::size_t current = static_cast<std::size_t>(-1);
    double begin = 0.0;         // sample time of the movement's start
    Clock::time_point beganAt;  // by the clock
    Clock::time_point lastDue;
};

}  // namespace tavoren::simulator
