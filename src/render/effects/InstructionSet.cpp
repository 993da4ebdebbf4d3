#include "src/render/effects/InstructionSet.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace tdkviz {

namespace {

InstructionSet Offered() {
#if defined(__x86_64__)
    __builtin_cpu_init();
    const bool wide = __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512vl");
    if (wide) return InstructionSet::kVector512;
    if (__builtin_cpu_supports("avx2")) return InstructionSet::kVector256;
#endif
    return InstructionSet::kVector128;
}

InstructionSet Allowed() {
    constexpr const char* kNames[] = {"scalar", "128", "256", "512"};
    const char* wanted = std::getenv("TDKVIZ_INSTRUCTION_SET");
    for (int set = 0; wanted && set < static_cast<int>(std::size(kNames)); ++set) {
        if (std::strcmp(wanted, kNames[set]) == 0) return static_cast<InstructionSet>(set);
    }
    return InstructionSet::kVector512;
}

std::atomic<InstructionSet>& InForce() {
    static std::atomic<InstructionSet> set = std::min(Offered(), Allowed());
    return set;
}

}  // namespace

InstructionSet BestInstructionSet() {
    return InForce().load(std::memory_order_relaxed);
}

void LimitInstructionSet(InstructionSet limit) {
    InForce() = std::min(limit, Offered());
}

}  // namespace tdkviz
