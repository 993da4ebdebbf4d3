// Hands every frame to a callback and paints it in one colour, with a mark in the top left corner that
// shows which way up the picture is, or paints a picture in which every pixel differs.
#include "tests/plugins/testplugins/ProbePicture.h"
#include "tests/plugins/testplugins/TestPlugin.h"

namespace {

using Callback = void (*)(void*, int32_t, int32_t, const VizAnalysisFrame*);
std::atomic<Callback> callback{nullptr};
std::atomic<void*> callbackContext{nullptr};
std::atomic<bool> paintsPicture{false};

constexpr int32_t kMarkSide = 8;
constexpr uint32_t kMarkColor = 0xFF0000;
constexpr uint32_t kColor = 0x204060;

void Paint(void* pixels, int32_t width, int32_t height, int32_t pitch, const VizAnalysisFrame& frame) {
    const int64_t stride = pitch < 0 ? -pitch : pitch;
    for (int32_t row = 0; row < height; ++row) {
        const int32_t fromTop = pitch < 0 ? height - 1 - row : row;
        auto* line = reinterpret_cast<uint32_t*>(static_cast<uint8_t*>(pixels) + row * stride);
        for (int32_t x = 0; x < width; ++x) {
            const uint32_t flat = fromTop < kMarkSide && x < kMarkSide ? kMarkColor : kColor;
            line[x] = paintsPicture ? ProbePictureColor(x, fromTop, width, height) : flat;
        }
    }
    if (const Callback function = callback) function(callbackContext, width, height, &frame);
}

}  // namespace

TDKVIZ_EXPORT void SetProbeCallback(Callback function, void* context) {
    callback = nullptr;
    callbackContext = context;
    callback = function;
}

TDKVIZ_EXPORT void SetProbePicture(bool on) {
    paintsPicture = on;
}

TEST_PLUGIN(.Name = "Probe", .SaysMask = true, .WantsSpectrum = 1, .Paint = Paint)
