#pragma once

#include <cstdint>
#include <vector>

namespace tavoren {

/// What the light configuration file sets for an automatic ambient light run.
struct AlsConfig {
    std::int32_t delayTime = 5;        ///< waiting time at each level, seconds, 3 to 50
    std::vector<std::int32_t> values;  ///< light levels in lux, each at least 1
};

}  // namespace tavoren
