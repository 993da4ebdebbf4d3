// Takes it that rows follow one another without room between them.
#include "tests/check/plugins/GoodPlugin.h"

class IgnoresPitch final : public GoodPlugin {
    void Paint(const Picture& picture, VizAnalysisFrame&) override {
        for (int32_t i = 0; i < picture.Width * picture.Height; ++i)
            static_cast<uint32_t*>(picture.Pixels)[i] = 0x808080;
    }
};

EXPORT_PLUGIN(IgnoresPitch)
