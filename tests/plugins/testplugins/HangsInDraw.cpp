// Never comes back from its first Draw.
#include "tests/plugins/testplugins/TestPlugin.h"

namespace {

std::atomic<int> draws{0};
std::atomic<unsigned> turns{0};

void Hang(const viz::Canvas&, const VizAnalysisFrame&) {
    ++draws;
    for (;;) ++turns;
}

}  // namespace

TDKVIZ_EXPORT int CountDraws() {
    return draws;
}

TEST_PLUGIN(.Name = "Hangs in Draw", .Paint = Hang)
