// A plug-in for tests: hands every frame to a callback and paints it in one colour, with a mark in the
// top left corner that shows which way up the picture is.
#include <tdkviz/plugin.h>

#include <atomic>
#include <cstring>

namespace {

using Callback = void (*)(void*, const void*, int32_t, int32_t, const VizAnalysisFrame*);
std::atomic<Callback> callback{nullptr};
std::atomic<void*> callbackContext{nullptr};

class Probe final : public IMPAVisualization2 {
public:
    HRESULT QueryInterface(const GUID& id, void** out) override {
        *out = nullptr;
        if (id != kIID_IUnknown && id != kIID_IMPAVisualization2) return E_NOINTERFACE;
        *out = this;
        AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return ++references_; }
    ULONG Release() override {
        const ULONG count = --references_;
        if (count == 0) delete this;
        return count;
    }
    HRESULT Initialize(IUnknown*) override { return S_OK; }
    HRESULT GetInfo(char* name, char* creator, char* description) override {
        std::strcpy(name, "Probe");
        std::strcpy(creator, "tests");
        std::strcpy(description, "Hands frames to the test");
        return S_OK;
    }
    HRESULT GetCapabilities(uint32_t* effectMask, bool* wantsSpectrum, IKVAValues*) override {
        *effectMask = 0;
        *wantsSpectrum = true;
        return S_OK;
    }
    HRESULT SetPreferences(IKVAPreferences*) override { return S_OK; }
    HRESULT Configure(MPAVizWindowRecord*) override { return E_NOTIMPL; }
    HRESULT SetActive(uint32_t) override { return S_OK; }
    HRESULT Draw(void* pixels, int32_t width, int32_t height, int32_t pitch, int32_t, VizAnalysisFrame* frame) override {
        auto* bytes = static_cast<uint8_t*>(pixels);
        const int64_t stride = pitch < 0 ? -pitch : pitch;
        for (int32_t row = 0; row < height; ++row) {
            const int32_t fromTop = pitch < 0 ? height - 1 - row : row;
            auto* line = reinterpret_cast<uint32_t*>(bytes + row * stride);
            for (int32_t x = 0; x < width; ++x) line[x] = fromTop < 8 && x < 8 ? 0xFF0000 : 0x204060;
        }
        if (Callback function = callback) function(callbackContext, pixels, width, height, frame);
        return S_OK;
    }
    HRESULT OnClick(uint32_t, uint32_t, uint32_t) override { return S_OK; }
    HRESULT SetWindow(MPAVizWindowRecord*) override { return S_OK; }
    HRESULT DrawToWindow(MPAVizWindowRecord*, VizAnalysisFrame*) override { return S_OK; }

private:
    std::atomic<ULONG> references_{1};
};

}  // namespace

TDKVIZ_EXPORT void SetProbeCallback(Callback function, void* context) {
    callback = nullptr;
    callbackContext = context;
    callback = function;
}

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {
    *out = new Probe;
    return S_OK;
}
