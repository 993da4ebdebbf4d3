// A plug-in for tests: never comes back from its first Draw.
#include <tdkviz/plugin.h>

#include <atomic>
#include <cstring>

namespace {

std::atomic<int> draws{0};
std::atomic<unsigned> spin{0};

class HangsInDraw final : public IMPAVisualization2 {
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
    HRESULT GetInfo(char* name, char*, char*) override {
        std::strcpy(name, "Hangs in Draw");
        return S_OK;
    }
    HRESULT GetCapabilities(uint32_t*, bool*, IKVAValues*) override { return S_OK; }
    HRESULT SetPreferences(IKVAPreferences*) override { return S_OK; }
    HRESULT Configure(MPAVizWindowRecord*) override { return E_NOTIMPL; }
    HRESULT SetActive(uint32_t) override { return S_OK; }
    HRESULT Draw(void*, int32_t, int32_t, int32_t, int32_t, VizAnalysisFrame*) override {
        ++draws;
        for (;;) ++spin;
    }
    HRESULT OnClick(uint32_t, uint32_t, uint32_t) override { return S_OK; }
    HRESULT SetWindow(MPAVizWindowRecord*) override { return S_OK; }
    HRESULT DrawToWindow(MPAVizWindowRecord*, VizAnalysisFrame*) override { return S_OK; }

private:
    std::atomic<ULONG> references_{1};
};

}  // namespace

TDKVIZ_EXPORT int CountDraws() {
    return draws;
}

TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {
    *out = new HangsInDraw;
    return S_OK;
}
