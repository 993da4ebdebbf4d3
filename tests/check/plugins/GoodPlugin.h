// The plug-in that the faulty ones are made of: each changes one thing.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include <tdkviz/kit/plugin.h>

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
class GoodPlugin : public viz::BufferPlugin {
public:
    GoodPlugin() : BufferPlugin({"Test", "The tests", "Sound but for one thing", 0, false}) {}
    // Faults need more than the kit's canvas lets through.
    HRESULT Draw(void* pixels, int32_t width, int32_t height, int32_t pitch, int32_t,
                 VizAnalysisFrame* frame) override {
        PaintInto({pixels, width, height, std::abs(pitch)}, *frame);
        return S_OK;
    }

protected:
    virtual void PaintInto(const Picture& picture, VizAnalysisFrame& frame) {
        int32_t loudest = 0;
        for (const int8_t sample : frame.WaveformLeft) loudest = std::max(loudest, std::abs(int32_t{sample}));
        for (int32_t y = 0; y < picture.Height; ++y)
            picture.Row(y)[y % picture.Width] = static_cast<uint32_t>(loudest) * 0x10101;
    }
};

#define EXPORT_PLUGIN(Type)                                        \
    TDKVIZ_EXPORT HRESULT MPACreateVisualization(IUnknown** out) { \
        return viz::Create<Type>(out);                             \
    }
