#pragma once

#include <cstdint>

namespace tavoren {

/// The one elapsed-time clock: milliseconds since some fixed moment. Safe in every thread.
std::int64_t nowMilliseconds();

}  // namespace tavoren
