// Takes the byte for a word.
#include "tests/check/plugins/GoodPlugin.h"

class WideFlag final : public GoodPlugin {
    HRESULT GetCapabilities(uint32_t*, bool* wantsSpectrum, IKVAValues*) override {
        const int32_t yes = 1;
        std::memcpy(static_cast<void*>(wantsSpectrum), &yes, sizeof yes);
        return S_OK;
    }
};

EXPORT_PLUGIN(WideFlag)
