// Rounds otherwise from its first Draw on.
#include <cfenv>

#include "tests/check/plugins/GoodPlugin.h"

class FloatingPointMode final : public GoodPlugin {
    void Paint(const Picture& picture, VizAnalysisFrame& frame) override {
        std::fesetround(FE_DOWNWARD);
        GoodPlugin::Paint(picture, frame);
    }
};

EXPORT_PLUGIN(FloatingPointMode)
