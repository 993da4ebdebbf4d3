// Loses memory with each frame.
#include "tests/check/plugins/GoodPlugin.h"

class LeaksEachFrame final : public GoodPlugin {
    void Paint(const Picture& picture, VizAnalysisFrame& frame) override {
        kept_ = std::malloc(100);
        GoodPlugin::Paint(picture, frame);
    }

private:
    void* volatile kept_ = nullptr;
};

EXPORT_PLUGIN(LeaksEachFrame)
