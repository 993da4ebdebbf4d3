// All white and all black in turn.
#include "tests/check/plugins/GoodPlugin.h"

class Flashing final : public GoodPlugin {
    void Paint(const Picture& picture, VizAnalysisFrame&) override {
        const uint8_t level = frames_++ / 2 % 2 == 0 ? 0xFF : 0;
        for (int32_t y = 0; y < picture.Height; ++y)
            std::memset(picture.Row(y), level, static_cast<size_t>(picture.Width) * 4);
    }

private:
    int frames_ = 0;
};

EXPORT_PLUGIN(Flashing)
