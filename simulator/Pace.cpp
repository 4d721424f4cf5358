#include "simulator/Pace.h"

#include <algorithm>

namespace tavoren::simulator {

Pace::Pace(double times, std::chrono::milliseconds shortestRest)
    : speed(times), hold(static_cast<double>(shortestRest.count()) * 1e-3) {}

/// Seconds by the clock for one second of samples.
double Pace::factor(const Script& script) const {
    if (current == script.size())
        return speed == 0.0 ? 1.0 : 1.0 / speed;
    const Movement& movement = script.movement(current);
    const double shortest = movement.isRest() ? hold : 0.0;
    const double wanted = speed == 0.0 ? 0.0 : movement.seconds / speed;
    return std::max(wanted, shortest) / movement.seconds;
}

Pace::Clock::time_point Pace::due(const Script& script, double time, Clock::time_point now) {
    const std::size_t index = script.indexAt(time);
    if (index != current) {
        current = index;
        begin = time;
        beganAt = std::max(now, lastDue);
    }
    const std::chrono::duration<double> passed((time - begin) * factor(script));
    lastDue = beganAt + std::chrono::duration_cast<Clock::duration>(passed);
    return lastDue;
}

}  // namespace tavoren::simulator
