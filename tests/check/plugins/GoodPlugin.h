// The plug-in that the faulty ones are made of: each changes one thing.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include <tdkviz/plugin.h>

struct Picture {
    void* Pixels;
    int32_t Width, Height;
    int32_t RowBytes;

    // In order of memory.
    uint32_t* Row(int32_t y) const {
        return reinterpret_cast<uint32_t*>(static_cast<uint8_t*>(Pixels) + std::ptrdiff_t{y} * RowBytes);
    }
};

// Paints a slanted line whose brightness follows the loudest sample.
class GoodPlugin : public IMPAVisualization2 {
public:
    virtual ~GoodPlugin() = default;

    HRESULT QueryInterface(const GUID& id, void** out) override {
        *out = id == kIID_IUnknown || id == kIID_IMPAVisualization2 ? this : nullptr;
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
    HRESULT Initialize(IUnknown*) override { return S_OK; }
    HRESULT GetInfo(char* name, char* creator, char* description) override {
        std::strcpy(name, "Test");
        std::strcpy(creator, "The tests");
        std::strcpy(description, "Sound but for one thing");
        return S_OK;
    }
    HRESULT GetCapabilities(uint32_t* mask, bool*, IKVAValues*) override {
        *mask = 0;
        return S_OK;
    }
    HRESULT SetPreferences(IKVAPreferences*) override { return S_OK; }
    HRESULT Configure(MPAVizWindowRecord*) override { return E_NOTIMPL; }
    HRESULT SetActive(uint32_t) override { return S_OK; }
    HRESULT OnClick(uint32_t, uint32_t, uint32_t) override { return S_OK; }
    HRESULT SetWindow(MPAVizWindowRecord*) override { return S_OK; }
    HRESULT DrawToWindow(MPAVizWindowRecord*, VizAnalysisFrame*) override { return S_OK; }
    HRESULT Draw(void* pixels, int32_t width, int32_t height, int32_t pitch, int32_t,
                 VizAnalysisFrame* frame) override {
        Paint({pixels, width, height, std::abs(pitch)}, *frame);
        return S_OK;
    }

protected:
    virtual void Paint(const Picture& picture, VizAnalysisFrame& frame) {
        int32_t loudest = 0;
        for (const int8_t sample : frame.WaveformLeft) loudest = std::max(loudest, std::abs(int32_t{sample}));
        for (int32_t y = 0; y < picture.Height; ++y)
            picture.Row(y)[y % picture.Width] = static_cast<uint32_t>(loudest) * 0x10101;
    }

private:
    std::atomic<ULONG> count_{1};
};

#define EXPORT_PLUGIN(Type)                                        \
    TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) { \
        *out = new Type;                                           \
        return S_OK;                                               \
    }
