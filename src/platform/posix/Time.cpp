#include <chrono>
#include <thread>

#include "platform/Platform.h"

namespace tavoren {

namespace {

// As coarse as the usual counter of Windows, so that a count times 1000 stays within 64 bits.
using Tick = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;

template <typename Unit>
std::int64_t sinceStart() {
    return std::chrono::duration_cast<Unit>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

}  // namespace

BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency) {
    frequency->QuadPart = Tick::period::den;
    return TRUE;
}

BOOL QueryPerformanceCounter(LARGE_INTEGER* count) {
    count->QuadPart = sinceStart<Tick>();
    return TRUE;
}

DWORD GetTickCount() {
    return static_cast<DWORD>(sinceStart<std::chrono::milliseconds>());
}

void Sleep(DWORD milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

}  // namespace tavoren
