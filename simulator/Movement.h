#pragma once

#include <string>

namespace tavoren::simulator {

/// One stretch of a script. What changes in it changes smoothly from the state before: slowly at
/// both ends, as a hand does it.
struct Movement {
    std::string text;      ///< for the console
    double seconds = 0.0;  ///< of sample time
    int axis = 0;          ///< of the device, about which it turns
    double degrees = 0.0;  ///< counterclockwise
    double carried = 0.0;  ///< share of the way through the field's disturbance
    double light = 0.0;    ///< change in lux

    bool isRest() const { return degrees == 0.0 && carried == 0.0 && light == 0.0; }
};

}  // namespace tavoren::simulator
