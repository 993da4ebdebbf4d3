// Doesn't come back from Draw.
#include <unistd.h>

#include "tests/check/plugins/GoodPlugin.h"

class HangInDraw final : public GoodPlugin {
    void Paint(const Picture&, VizAnalysisFrame&) override {
        for (;;) pause();
    }
};

EXPORT_PLUGIN(HangInDraw)
