#include "platform/gdi/Resolution.h"

#include <algorithm>
#include <cstdlib>

namespace tdkp {
namespace {

constexpr int kUsual = 96;
constexpr int kLeast = 48;
constexpr int kMost = 480;

}  // namespace

int PixelsPerInch() {
    const char* value = std::getenv("TDKVIZ_DPI");
    const int asked = value != nullptr ? std::atoi(value) : 0;
    return asked > 0 ? std::clamp(asked, kLeast, kMost) : kUsual;
}

int ScaledPixels(int pixels) {
    return std::max(1, (pixels * PixelsPerInch() + kUsual / 2) / kUsual);
}

}  // namespace tdkp
