// Fills each text to the last byte, without a terminator, and stores odd values.
#include <tdkviz/plugin.h>

#include <cstring>
#include <initializer_list>

namespace {

class FullText final : public IMPAVisualization2 {
public:
    HRESULT QueryInterface(const GUID& id, void** out) override {
        *out = id == kIID_IMPAVisualization2 ? this : nullptr;
        return *out ? S_OK : E_NOINTERFACE;
    }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    HRESULT Initialize(IUnknown*) override { return S_OK; }
    HRESULT GetInfo(char* name, char* creator, char* description) override {
        for (char* text : {name, creator, description}) std::memset(text, 'n', kPluginTextSize);
        return S_OK;
    }
    HRESULT GetCapabilities(uint32_t* effectMask, bool* wantsSpectrum, IKVAValues*) override {
        *effectMask = 0;
        std::memset(wantsSpectrum, 2, 1);
        return S_OK;
    }
    HRESULT SetPreferences(IKVAPreferences*) override { return S_OK; }
    HRESULT Configure(MPAVizWindowRecord*) override { return S_OK; }
    HRESULT SetActive(uint32_t) override { return S_OK; }
    HRESULT Draw(void*, int32_t, int32_t, int32_t, int32_t, VizAnalysisFrame*) override { return S_OK; }
    HRESULT OnClick(uint32_t, uint32_t, uint32_t) override { return S_OK; }
    HRESULT SetWindow(MPAVizWindowRecord*) override { return S_OK; }
    HRESULT DrawToWindow(MPAVizWindowRecord*, VizAnalysisFrame*) override { return S_OK; }
};

FullText theObject;

}  // namespace

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {
    *out = &theObject;
    return S_OK;
}
