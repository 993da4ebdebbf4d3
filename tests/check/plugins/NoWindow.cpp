// Asks for a window and never paints into it.
#include "tests/check/plugins/GoodPlugin.h"

class NoWindow final : public GoodPlugin {
    HRESULT GetCapabilities(uint32_t*, bool*, IKVAValues* properties) override {
        return properties->SetNumber(kPropertyRenderMode, kRenderToWindow);
    }
};

EXPORT_PLUGIN(NoWindow)
