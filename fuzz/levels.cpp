// A light configuration is refused and changes nothing, or gives levels that a run can use.

#include <cstdlib>

#include "control/AlsProcess.h"
#include "fuzz/Fuzz.h"

namespace tavoren::fuzz {
namespace {

void checkLevels(const std::vector<std::int32_t>& levels) {
    require(!levels.empty(), "there is a level");
    const bool rising = levels.size() > 1 && levels[0] < levels[1];
    for (std::size_t i = 0; i < levels.size(); ++i) {
        require(levels[i] >= 1, "a level is at least 1 lux");
        if (i == 0)
            continue;
        require((levels[i - 1] < levels[i]) == rising, "levels rise or fall all the way");
        require(std::abs(std::int64_t{levels[i]} - levels[i - 1]) >= 300, "levels stand apart");
    }
}

void check(const std::string& input) {
    const TemporaryFolder& folder = workingFolder();
    folder.write("levels.txt", input);
    AlsProcess process(false);
    process.delayTime = 7;
    process.lightLevels = {42};
    if (accepts([&] { process.setConfigFile(folder / "levels.txt"); })) {
        checkLevels(process.lightLevels);
        require(process.delayTime >= 3 && process.delayTime <= 50, "the delay is 3 to 50 s");
        process.init();
    } else {
        require(process.delayTime == 7 && process.lightLevels == std::vector{42},
                "a refused file changes nothing");
    }
}

}  // namespace
}  // namespace tavoren::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavoren::fuzz::check(tavoren::fuzz::Input(data, size).text());
    return 0;
}
