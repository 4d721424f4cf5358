#include "platform/TimeLimits.h"

namespace tavoren {

constinit const std::chrono::milliseconds transferLimit{100000};
constinit const std::chrono::milliseconds leftOverLimit{100000};
constinit const std::chrono::milliseconds stageLimit{60000};

}  // namespace tavoren
