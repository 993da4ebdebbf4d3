// Takes longer for a frame than there is.
#include <chrono>
#include <thread>

#include "tests/check/plugins/GoodPlugin.h"

class Slow final : public GoodPlugin {
    void Paint(const Picture& picture, VizAnalysisFrame& frame) override {
        std::this_thread::sleep_for(std::chrono::milliseconds(40));
        GoodPlugin::Paint(picture, frame);
    }
};

EXPORT_PLUGIN(Slow)
