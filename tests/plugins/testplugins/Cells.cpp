// Paints the waveform as a grid that fills the frame: the picture is the same in a frame of every size that the
// grid divides.
#include "tests/plugins/testplugins/TestPlugin.h"

namespace {

constexpr int32_t kColumns = 8;
constexpr int32_t kRows = 5;

void Paint(void* pixels, int32_t width, int32_t height, int32_t pitch, const VizAnalysisFrame& frame) {
    const int64_t stride = pitch < 0 ? -pitch : pitch;
    for (int32_t y = 0; y < height; ++y) {
        auto* line = reinterpret_cast<uint32_t*>(static_cast<uint8_t*>(pixels) + y * stride);
        for (int32_t x = 0; x < width; ++x) {
            const int32_t cell = y * kRows / height * kColumns + x * kColumns / width;
            const int32_t sample = cell * kWaveformSamples / (kColumns * kRows);
            line[x] = static_cast<uint32_t>(static_cast<uint8_t>(frame.WaveformLeft[sample]) << 16 |
                                            static_cast<uint8_t>(frame.WaveformRight[sample]) << 8 | cell);
        }
    }
}

}  // namespace

TEST_PLUGIN(.Name = "Cells", .Paint = Paint)
