#include "frame/Clock.h"

#include "platform/Platform.h"

namespace tavoren {

namespace {

/// Counts per second of the high-resolution counter, 0 if there is none.
std::int64_t counterFrequency() {
    LARGE_INTEGER frequency{};
    return QueryPerformanceFrequency(&frequency) ? frequency.QuadPart : 0;
}

}  // namespace

std::int64_t nowMilliseconds() {
    static const std::int64_t frequency = counterFrequency();
    if (frequency == 0)
        return GetTickCount();
    LARGE_INTEGER count{};
    QueryPerformanceCounter(&count);
    return count.QuadPart * 1000 / frequency;
}

}  // namespace tavoren
