#pragma once

#include <string>

namespace tavoren::simulator {

/// A line of the help: an option, a sensor or a fault as it is typed, and what it does.
struct HelpRow {
    std::string form;
    std::string text;
};

}  // namespace tavoren::simulator
