// Changes what the plug-ins behind it hear.
#include "tests/check/plugins/GoodPlugin.h"

class WritesFrame final : public GoodPlugin {
    void Paint(const Picture& picture, VizAnalysisFrame& frame) override {
        frame.WaveformLeft[0] = 1;
        GoodPlugin::Paint(picture, frame);
    }
};

EXPORT_PLUGIN(WritesFrame)
