#pragma once

#include <cstdint>

namespace tavoren {

/// How far the collection of data has come.
enum class CollectionStatus : std::int32_t {
    neverStarted = -1,  ///< a replay stays here until it writes its calibrated dump
    sampling = 0,
    stopped = 1,
    dumpWritten = 2,  ///< or failed to be written
};

}  // namespace tavoren
