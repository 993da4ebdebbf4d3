// Writes a pixel in front of the first one.
#include "tests/check/plugins/GoodPlugin.h"

class BeforeTheStart final : public GoodPlugin {
    void Paint(const Picture& picture, VizAnalysisFrame&) override {
        static_cast<uint32_t*>(picture.Pixels)[-1] = 0x808080;
    }
};

EXPORT_PLUGIN(BeforeTheStart)
