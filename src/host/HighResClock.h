// The time source of the frame schedule.
#pragma once

#include <cstdint>

namespace tdkviz {

// Milliseconds of the performance counter, cut to 32 bits; of the tick count where the counter can't
// be used. Only differences mean anything. [any]
uint32_t HighResMilliseconds();

}  // namespace tdkviz
