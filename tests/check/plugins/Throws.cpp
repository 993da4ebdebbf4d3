// Throws from Draw.
#include <stdexcept>

#include "tests/check/plugins/GoodPlugin.h"

class Throws final : public GoodPlugin {
    void Paint(const Picture&, VizAnalysisFrame&) override { throw std::runtime_error("no such colour"); }
};

EXPORT_PLUGIN(Throws)
