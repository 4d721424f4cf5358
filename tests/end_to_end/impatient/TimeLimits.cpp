// In place of the library's limits, so that runs with a silent device end soon.

#include "platform/TimeLimits.h"

namespace tavoren {

const std::chrono::milliseconds transferLimit{900};
const std::chrono::milliseconds leftOverLimit{900};
const std::chrono::milliseconds stageLimit{800};

}  // namespace tavoren
