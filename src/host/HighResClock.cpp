#include "src/host/HighResClock.h"

#include <windows.h>

#include <limits>

namespace tdkviz {

namespace {

constexpr int64_t kMillisecondsPerSecond = 1000;

// The counter's frequency in Hz, or 0 if the counter can't be used: absent, too fine for 32 bits, or
// coarser than a millisecond.
int64_t ReadUsableFrequency() {
    LARGE_INTEGER frequency;
    if (!QueryPerformanceFrequency(&frequency)) return 0;
    if (frequency.QuadPart > std::numeric_limits<uint32_t>::max()) return 0;
    return frequency.QuadPart < kMillisecondsPerSecond ? 0 : frequency.QuadPart;
}

}  // namespace

uint32_t HighResMilliseconds() {
    static const int64_t kFrequency = ReadUsableFrequency();
    LARGE_INTEGER counter;
    if (kFrequency == 0 || !QueryPerformanceCounter(&counter)) return GetTickCount();
    // Unsigned, so that a machine that has been up for very long wraps instead of overflowing.
    const uint64_t scaled = static_cast<uint64_t>(counter.QuadPart) * kMillisecondsPerSecond;
    return static_cast<uint32_t>(scaled / static_cast<uint64_t>(kFrequency));
}

}  // namespace tdkviz
