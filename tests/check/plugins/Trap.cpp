// Stops for a debugger that isn't there, in its first Draw.
#include <csignal>

#include "tests/check/plugins/GoodPlugin.h"

class Trap final : public GoodPlugin {
    void Paint(const Picture&, VizAnalysisFrame&) override {
#if defined(__x86_64__)
        asm volatile("int3");
#else
        std::raise(SIGTRAP);
#endif
    }
};

EXPORT_PLUGIN(Trap)
