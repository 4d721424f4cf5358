#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "simulator/Attitude.h"
#include "simulator/Movement.h"

namespace tavoren::simulator {

/// Where the device is and how it moves at one moment.
struct Moment {
    Attitude attitude;
    Vector rate = Vector(3);  ///< degrees per second about the axes of the device
    double place = 0.0;       ///< 0 to 1: the way through the field's disturbance
    double lux = 0.0;
};

/// How long the stretches of a script last, in seconds, and the light levels that it visits.
struct ScriptTiming {
    double rest = 3.0;
    double fullTurn = 5.0;  ///< for 360 degrees; a quarter takes half of it
    std::vector<int> levels{100, 500, 1000};
};

/// What the operator does with the device in one movement sequence. Behind its end the device
/// rests where it is.
class Script {
  public:
    /// The script of a sequence; empty names and others throw `std::invalid_argument`.
    static Script of(const std::string& sequence, const ScriptTiming& timing);
    /// All names that `of` knows, in the order of the help.
    static std::vector<std::string> names();

    explicit Script(std::vector<Movement> list, double firstLux = 0.0);

    double seconds() const { return length; }
    std::size_t size() const { return movements.size(); }
    const Movement& movement(std::size_t index) const { return movements[index]; }
    double startOf(std::size_t index) const { return starts[index].seconds; }
    /// The movement that goes on at a time; `size()` behind the end.
    std::size_t indexAt(double time) const;
    /// The state at a time in seconds from the start.
    Moment at(double time) const;

  private:
    struct Start {
        double seconds = 0.0;
        Moment moment;
    };

    std::vector<Movement> movements;
    std::vector<Start> starts;  // of each movement
    Moment last;
    double length = 0.0;
};

}  // namespace tavoren::simulator
