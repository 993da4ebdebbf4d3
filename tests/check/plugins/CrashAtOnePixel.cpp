// Crashes where the picture has one pixel.
#include "tests/check/plugins/GoodPlugin.h"

class CrashAtOnePixel final : public GoodPlugin {
    void Paint(const Picture& picture, VizAnalysisFrame& frame) override {
        if (picture.Width * picture.Height == 1) std::abort();
        GoodPlugin::Paint(picture, frame);
    }
};

EXPORT_PLUGIN(CrashAtOnePixel)
