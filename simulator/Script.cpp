#include "simulator/Script.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tavoren::simulator {

namespace {

constexpr double circle = 2.0 * std::numbers::pi;

/// The share of a movement that is done at a share of its time, and its speed: a bell.
double progress(double part) {
    return part - std::sin(circle * part) / circle;
}
double speed(double part) {
    return 1.0 - std::cos(circle * part);
}

Moment moved(const Moment& from, const Movement& movement, double share) {
    Moment moment = from;
    moment.attitude = from.attitude.turned(movement.axis, movement.degrees * share);
    moment.place += movement.carried * share;
    moment.lux += movement.light * share;
    return moment;
}

}  // namespace

Script::Script(std::vector<Movement> list, double firstLux) : movements(std::move(list)) {
    last.lux = firstLux;
    for (const Movement& movement : movements) {
        starts.push_back({length, last});
        last = moved(last, movement, 1.0);
        length += movement.seconds;
    }
}

std::size_t Script::indexAt(double time) const {
    if (time >= length)
        return movements.size();
    const auto later = std::upper_bound(starts.begin(), starts.end(), time,
                                        [](double t, const Start& s) { return t < s.seconds; });
    return static_cast<std::size_t>(std::max<std::ptrdiff_t>(later - starts.begin() - 1, 0));
}

Moment Script::at(double time) const {
    const std::size_t index = indexAt(time);
    if (index == movements.size())
        return last;
    const Movement& movement = movements[index];
    const double part = std::max(time - starts[index].seconds, 0.0) / movement.seconds;
    Moment moment = moved(starts[index].moment, movement, progress(part));
    moment.rate[movement.axis] = movement.degrees / movement.seconds * speed(part);
    return moment;
}

}  // namespace tavoren::simulator
