// Writes a row behind the last one.
#include "tests/check/plugins/GoodPlugin.h"

class RowTooMany final : public GoodPlugin {
    void Paint(const Picture& picture, VizAnalysisFrame&) override {
        for (int32_t x = 0; x < picture.Width; ++x) picture.Row(picture.Height)[x] = 0x808080;
    }
};

EXPORT_PLUGIN(RowTooMany)
