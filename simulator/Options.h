#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "simulator/Device.h"
#include "simulator/Faults.h"
#include "simulator/HelpRow.h"
#include "simulator/Script.h"

namespace tavoren::simulator {

/// What the hub was asked to do.
struct Options {
    /// Throws `std::invalid_argument` with a message for the user.
    static Options parse(std::span<const std::string> arguments);
    static std::string help();
    /// Every option with the name of its value.
    static std::vector<HelpRow> all();

    DevicePlan device;
    ScriptTiming timing;
    std::vector<std::string> sequences{"full"};  ///< one for each session, the last for all others
    double speed = 1.0;                          ///< times real time; 0: as fast as the reader
    std::uint32_t hold = 50;                     ///< shortest rest in milliseconds of wall clock
    std::uint32_t interval = 10;                 ///< shortest report interval in milliseconds
    Faults faults;
    std::string records;  ///< file of the firmware's records; empty: none
    std::string name = "hub";
    std::string record;  ///< folder for dumps, in place of a hub; empty: none
    std::string truth;   ///< file for the true parameters; empty: none
    bool wait = false;   ///< for the operator, before each movement
    bool trace = false;
    bool wantsHelp = false;
};

}  // namespace tavoren::simulator
