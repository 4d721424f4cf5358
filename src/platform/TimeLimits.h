#pragma once

#include <chrono>

namespace tavoren {

/// How long the tool waits for a device that stays silent. Defined in a file of their own, so that
/// a test program can link shorter ones.
extern const std::chrono::milliseconds transferLimit;  ///< one read, write or control request
extern const std::chrono::milliseconds leftOverLimit;  ///< what is read behind a request to stop
extern const std::chrono::milliseconds stageLimit;     ///< one step of a sequence

}  // namespace tavoren
