// Paints nothing.
#include "tests/check/plugins/GoodPlugin.h"

class Black final : public GoodPlugin {
    void Paint(const Picture&, VizAnalysisFrame&) override {}
};

EXPORT_PLUGIN(Black)
