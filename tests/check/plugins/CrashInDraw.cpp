// Crashes in its first Draw.
#include "tests/check/plugins/GoodPlugin.h"

class CrashInDraw final : public GoodPlugin {
    void Paint(const Picture&, VizAnalysisFrame&) override { *static_cast<volatile int*>(nullptr) = 1; }
};

EXPORT_PLUGIN(CrashInDraw)
