#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "simulator/Hub.h"
#include "simulator/Options.h"
#include "simulator/Recorder.h"

namespace tavoren::simulator {

namespace {

constexpr int wrongUse = 2;

void record(const Options& options, Device& device) {
    if (!options.records.empty())
        device.records().load(options.records);
    device.reset();
    recordDumps(device, Script::of(options.sequences.front(), options.timing), options.record);
    std::cout << "Dumps written to " << options.record << std::endl;
}

int run(const Options& options) {
    if (options.wantsHelp) {
        std::cout << Options::help();
        return 0;
    }
    Device device(options.device);
    if (!options.record.empty())
        record(options, device);
    if (!options.truth.empty())
        writeTruth(device, options.truth);
    if (options.record.empty())
        Hub(device, options).run();
    return 0;
}

}  // namespace

}  // namespace tavoren::simulator

int main(int argc, char* argv[]) {
    using namespace tavoren::simulator;
    try {
        return run(Options::parse(std::vector<std::string>(argv + 1, argv + argc)));
    } catch (const std::invalid_argument& e) {
        std::cerr << "tavoren-hub: " << e.what() << "; try --help" << std::endl;
        return wrongUse;
    } catch (const std::exception& e) {
        std::cerr << "tavoren-hub: " << e.what() << std::endl;
        return 1;
    }
}
