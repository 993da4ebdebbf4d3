// The plug-in that the test plug-ins are made of. Each of them is a few lines that say how it differs.
//
// What it is told goes to the host's ITestLog, which outlives the library. It starts with Initialize.
#pragma once

#include <tdkviz/kit/canvas.h>
#include <tdkviz/plugin.h>

#include <atomic>
#include <cstring>
#include <initializer_list>

inline constexpr GUID kIID_ITestLog = {0x7E57106A, 0x0001, 0x4C0D, {0x80, 0x01, 1, 2, 3, 4, 5, 6}};
struct ITestLog : IUnknown {
    virtual void Note(const char* text) = 0;
};

struct TestPluginTraits {
    const char* Name = nullptr;  // null leaves the three texts alone
    bool FillsTexts = false;     // to the last byte, without a terminator
    bool OffersTwo = true;
    bool OffersOne = false;
    HRESULT InitializeResult = S_OK;
    HRESULT InfoResult = S_OK;
    HRESULT CapabilitiesResult = S_OK;
    bool SaysMask = false;
    uint32_t Mask = 0;
    uint8_t WantsSpectrum = 0;
    int32_t SupportConfigure = -1;  // below 0: not set
    int32_t RenderMode = -1;
    bool ThrowsInDraw = false;
    // Paints instead of the plain grey.
    void (*Paint)(const viz::Canvas& canvas, const VizAnalysisFrame& frame) = nullptr;
};

class TestPlugin final : public IMPAVisualization2, public IMPAVisualization, public IMPAVisualizationClose {
public:
    explicit TestPlugin(const TestPluginTraits& traits) : traits_(traits) {}

    HRESULT QueryInterface(const GUID& id, void** out) override {
        *out = nullptr;
        if (id == kIID_IUnknown || (id == kIID_IMPAVisualization2 && traits_.OffersTwo)) {
            *out = static_cast<IMPAVisualization2*>(this);
        } else if (id == kIID_IMPAVisualization && traits_.OffersOne) {
            *out = static_cast<IMPAVisualization*>(this);
        } else if (id == kIID_IMPAVisualizationClose) {
            *out = static_cast<IMPAVisualizationClose*>(this);
        }
        if (!*out) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return ++count_; }
    ULONG Release() override {
        const ULONG left = --count_;
        if (left == 0) delete this;
        return left;
    }
    HRESULT Initialize(IUnknown* context) override {
        void* log = nullptr;
        if (context && context->QueryInterface(kIID_ITestLog, &log) == S_OK) log_ = static_cast<ITestLog*>(log);
        Note("Initialize");
        return traits_.InitializeResult;
    }
    HRESULT GetInfo(char* name, char* creator, char* description) override {
        Note("GetInfo");
        for (char* text : {name, creator, description}) {
            if (traits_.FillsTexts) std::memset(text, 'n', kPluginTextSize);
        }
        if (traits_.Name) {
            std::memcpy(name, traits_.Name, std::strlen(traits_.Name) + 1);
            std::memcpy(creator, "The test", sizeof "The test");
            std::memcpy(description, "A test plug-in", sizeof "A test plug-in");
        }
        return traits_.InfoResult;
    }
    HRESULT GetCapabilities(uint32_t* effectMask, bool* wantsSpectrum, IKVAValues* properties) override {
        Note("GetCapabilities");
        if (traits_.SaysMask) {
            *effectMask = traits_.Mask;
            std::memcpy(wantsSpectrum, &traits_.WantsSpectrum, 1);
        }
        if (traits_.SupportConfigure >= 0) {
            properties->SetNumber(kPropertySupportConfigure, static_cast<uint32_t>(traits_.SupportConfigure));
        }
        if (traits_.RenderMode >= 0) {
            properties->SetNumber(kPropertyRenderMode, static_cast<uint32_t>(traits_.RenderMode));
        }
        return traits_.CapabilitiesResult;
    }
    HRESULT SetPreferences(IKVAPreferences*) override { return Note("SetPreferences"); }
    HRESULT SetHostString(const char* text) override {
        Note("SetHostString");
        return Note(text);
    }
    HRESULT Configure(MPAVizWindowRecord*) override { return Note("Configure record"); }
    HRESULT Configure(HWND) override { return Note("Configure window"); }
    HRESULT SetActive(uint32_t active) override { return Note(active == 1 ? "SetActive 1" : "SetActive 0"); }
    HRESULT Draw(void* pixels, int32_t width, int32_t height, int32_t pitch, int32_t,
                 VizAnalysisFrame* frame) override {
        if (traits_.ThrowsInDraw) throw 1;
        if (traits_.Paint) {
            traits_.Paint({pixels, width, height, pitch}, *frame);
        } else {
            std::memset(pixels, 0x40, static_cast<size_t>(height) * static_cast<size_t>(pitch < 0 ? -pitch : pitch));
        }
        return Note("Draw");
    }
    HRESULT OnClick(uint32_t, uint32_t, uint32_t) override { return Note("OnClick"); }
    HRESULT SetWindow(MPAVizWindowRecord* target) override {
        return Note(target->Window ? "SetWindow" : "SetWindow 0");
    }
    HRESULT DrawToWindow(MPAVizWindowRecord*, VizAnalysisFrame*) override { return Note("DrawToWindow"); }
    HRESULT Close() override { return Note("Close"); }

private:
    ~TestPlugin() {
        Note("End");
        if (log_) log_->Release();
    }
    HRESULT Note(const char* text) {
        if (log_) log_->Note(text);
        return S_OK;
    }

    const TestPluginTraits traits_;
    std::atomic<ULONG> count_{1};
    ITestLog* log_ = nullptr;
};

// The export of a plug-in with these traits.
#define TEST_PLUGIN(...)                                                        \
    TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) {              \
        *out = static_cast<IMPAVisualization2*>(new TestPlugin({__VA_ARGS__})); \
        return S_OK;                                                            \
    }
