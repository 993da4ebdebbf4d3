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

void Paint(const viz::Canvas& canvas, const VizAnalysisFrame& frame) {
    const int32_t width = canvas.Width(), height = canvas.Height();
    for (int32_t y = 0; y < height; ++y) {
        for (int32_t x = 0; x < width; ++x) {
            const uint32_t flat = y < kMarkSide && x < kMarkSide ? kMarkColor : kColor;
            canvas.Row(y)[x] = paintsPicture ? ProbePictureColor(x, y, width, height) : flat;
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
