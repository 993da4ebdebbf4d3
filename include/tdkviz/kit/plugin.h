// What every plug-in needs around its picture: reference count, interfaces, description. With these a plug-in is a
// constructor and a Paint; docs/plugins.md begins with one.
//
// The kit is for authors of plug-ins: headers that become part of the plug-in, in the namespace viz. Nothing of it
// crosses a library's border, so a plug-in goes on working whatever becomes of the kit. surface.h and choice_dialog.h
// need <windows.h>, the others nothing but this folder.
#pragma once

#include <atomic>
#include <cstring>
#include <new>

#include <tdkviz/kit/canvas.h>
#include <tdkviz/plugin.h>

namespace viz {

// What a plug-in says about itself. The texts are literals, or outlive the plug-in otherwise; of each as much is told
// as kPluginTextSize has room for.
struct About {
    const char* Name;
    const char* Creator;
    const char* Description;
    uint32_t Effects = kEffectsAll;  // VizEffectMask: those that may run over the last picture; 0 for none
    bool WantsSpectrum = true;       // false if Paint never reads the spectrum: it needn't be worked out then
};

// The COM side of a plug-in that offers one interface.
template <typename Interface, const GUID& Id>
class PluginBase : public Interface {
public:
    explicit PluginBase(const About& about) : about_(about) {}
    PluginBase(const PluginBase&) = delete;
    PluginBase& operator=(const PluginBase&) = delete;

    HRESULT QueryInterface(const GUID& id, void** out) override {
        *out = nullptr;
        if (!(id == kIID_IUnknown) && !(id == Id)) return E_NOINTERFACE;
        *out = static_cast<Interface*>(this);
        AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return ++count_; }
    ULONG Release() override {
        const ULONG left = --count_;
        if (left == 0) delete this;
        return left;
    }
    HRESULT Initialize(IUnknown*) override { return S_OK; }
    HRESULT GetInfo(char* name, char* creator, char* description) override {
        Tell(name, about_.Name);
        Tell(creator, about_.Creator);
        Tell(description, about_.Description);
        return S_OK;
    }
    // To be called by an override that has properties to set.
    HRESULT GetCapabilities(uint32_t* effectMask, bool* wantsSpectrum, IKVAValues*) override {
        *effectMask = about_.Effects;
        *wantsSpectrum = about_.WantsSpectrum;
        return S_OK;
    }
    HRESULT OnClick(uint32_t, uint32_t, uint32_t) override {
        ++clicks_;
        return S_OK;
    }
    HRESULT Draw(void* pixels, int32_t width, int32_t height, int32_t pitch, int32_t bitsPerPixel,
                 VizAnalysisFrame* frame) override {
        if (!pixels || !frame || bitsPerPixel != kBitsPerPixel || width < 1 || height < 1) return E_INVALIDARG;
        Paint(Canvas(pixels, width, height, pitch), *frame);
        ++frames_;
        return S_OK;
    }

protected:
    // By Release alone.
    virtual ~PluginBase() = default;

    // One frame, over the last one as the effects have left it. The size may differ from the last frame's. Must not
    // throw, wait, or keep the arguments. Window mode does without. [frame] [borrowed]
    virtual void Paint(const Canvas& /*canvas*/, const VizAnalysisFrame& /*frame*/) {}

    // How often the view was clicked: for other colours or views. [any]
    uint32_t Clicks() const { return clicks_; }
    // Painted so far: the clock of all that moves, so that the same music gives the same pictures. [frame]
    uint32_t Frames() const { return frames_; }

private:
    static constexpr int32_t kBitsPerPixel = 32;

    static void Tell(char* text, const char* told) {
        std::strncpy(text, told, kPluginTextSize - 1);
        text[kPluginTextSize - 1] = 0;
    }

    const About about_;
    std::atomic<ULONG> count_{1};
    std::atomic<uint32_t> clicks_{0};
    uint32_t frames_ = 0;
};

// A plug-in of the present interface that paints buffers: needs a constructor and Paint. What else it is interested in
// (SetPreferences, Configure, SetActive...) it overrides; tdkviz/plugin.h tells who calls what on which thread.
class BufferPlugin : public PluginBase<IMPAVisualization2, kIID_IMPAVisualization2> {
public:
    explicit BufferPlugin(const About& about) : PluginBase(about) {}
    HRESULT SetPreferences(IKVAPreferences*) override { return S_OK; }
    HRESULT Configure(MPAVizWindowRecord*) override { return E_NOTIMPL; }
    HRESULT SetActive(uint32_t) override { return S_OK; }
    HRESULT SetWindow(MPAVizWindowRecord*) override { return S_OK; }
    HRESULT DrawToWindow(MPAVizWindowRecord*, VizAnalysisFrame*) override { return E_NOTIMPL; }
};

// The body of MPACreateVisualization for a plug-in with one interface.
template <typename Plugin>
HRESULT Create(IUnknown** out) {
    *out = new (std::nothrow) Plugin;
    return *out ? S_OK : E_OUTOFMEMORY;
}

}  // namespace viz
