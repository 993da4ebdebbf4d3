// What every plug-in of this folder needs around its picture: reference count, interfaces, description.
#pragma once

#include <atomic>
#include <cstring>
#include <new>

#include <tdkviz/plugin.h>

#include "Canvas.h"

namespace viz {

// The COM side of a plug-in that offers one interface. A plug-in paints in Paint.
template <typename Interface, const GUID& Id>
class PluginBase : public Interface {
public:
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
    HRESULT OnClick(uint32_t, uint32_t, uint32_t) override {
        ++clicks_;
        return S_OK;
    }
    HRESULT Draw(void* pixels, int32_t width, int32_t height, int32_t pitch, int32_t bitsPerPixel,
                 VizAnalysisFrame* frame) override {
        if (!pixels || !frame || bitsPerPixel != 32 || width < 1 || height < 1) return E_INVALIDARG;
        Paint(Canvas(pixels, width, height, pitch), *frame);
        ++frames_;
        return S_OK;
    }

protected:
    virtual ~PluginBase() = default;

    virtual void Paint(const Canvas&, const VizAnalysisFrame&) {}

    // Clicks change colours or views; they come at any time.
    uint32_t Clicks() const { return clicks_; }
    // Since the start: the clock of all that moves, so that the same music gives the same pictures.
    uint32_t Frames() const { return frames_; }

    static HRESULT Tell(char* name, const char* ownName, char* creator, char* description, const char* ownDescription) {
        std::strncpy(name, ownName, kPluginTextSize - 1);
        std::strncpy(creator, "Corvane", kPluginTextSize - 1);
        std::strncpy(description, ownDescription, kPluginTextSize - 1);
        return S_OK;
    }

private:
    std::atomic<ULONG> count_{1};
    std::atomic<uint32_t> clicks_{0};
    uint32_t frames_ = 0;
};

// A plug-in of the present interface that paints buffers and does nothing else.
class BufferPlugin : public PluginBase<IMPAVisualization2, kIID_IMPAVisualization2> {
public:
    HRESULT GetCapabilities(uint32_t* effectMask, bool* wantsSpectrum, IKVAValues*) override {
        *effectMask = kEffectsAll;
        *wantsSpectrum = true;
        return S_OK;
    }
    HRESULT SetPreferences(IKVAPreferences*) override { return S_OK; }
    HRESULT Configure(MPAVizWindowRecord*) override { return E_NOTIMPL; }
    HRESULT SetActive(uint32_t) override { return S_OK; }
    HRESULT SetWindow(MPAVizWindowRecord*) override { return S_OK; }
    HRESULT DrawToWindow(MPAVizWindowRecord*, VizAnalysisFrame*) override { return E_NOTIMPL; }
};

// The body of MPACreateVisualization.
template <typename Plugin>
HRESULT Create(IUnknown** out) {
    *out = new (std::nothrow) Plugin;
    return *out ? S_OK : E_OUTOFMEMORY;
}

}  // namespace viz
