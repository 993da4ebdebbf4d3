// Paints the waveform as a grid that fills the frame: the picture is the same in a frame of every size that the
// grid divides.
#include "tests/plugins/testplugins/TestPlugin.h"

namespace {

constexpr int32_t kColumns = 8;
constexpr int32_t kRows = 5;

void Paint(const viz::Canvas& canvas, const VizAnalysisFrame& frame) {
    for (int32_t y = 0; y < canvas.Height(); ++y) {
        for (int32_t x = 0; x < canvas.Width(); ++x) {
            const int32_t cell = y * kRows / canvas.Height() * kColumns + x * kColumns / canvas.Width();
            const int32_t sample = cell * kWaveformSamples / (kColumns * kRows);
            canvas.Row(y)[x] = static_cast<uint32_t>(static_cast<uint8_t>(frame.WaveformLeft[sample]) << 16 |
                                                     static_cast<uint8_t>(frame.WaveformRight[sample]) << 8 | cell);
        }
    }
}

}  // namespace

TEST_PLUGIN(.Name = "Cells", .Paint = Paint)
