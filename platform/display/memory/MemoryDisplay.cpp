#include "platform/display/memory/MemoryDisplay.h"

#include <atomic>
#include <new>

#include "platform/display/memory/FixedPalette.h"
#include "platform/gdi/PixelCodec.h"

namespace tdkp {
namespace {

constexpr int kMaxSide = 32767;
// Above the small numbers that stand for something else than a window (desktop, broadcast).
constexpr WindowId kFirstWindow = 0x00200000;

PixelFormat FormatOfDepth(int depth) {
    switch (depth) {
        case 8:
            return PixelFormat::kIndexed8;
        case 15:
            return PixelFormat::kRgb555;
        case 16:
            return PixelFormat::kRgb565;
        case 24:
        case 32:
            return PixelFormat::kRgb32;
        default:
            return PixelFormat::kNone;
    }
}

const uint32_t* PaletteOf(PixelFormat format) {
    return format == PixelFormat::kIndexed8 ? FixedPalette().data() : nullptr;
}

// Ids go on counting from one display to the next, so that a stale handle never names a new window.
WindowId NextWindow() {
    static std::atomic<WindowId> next{kFirstWindow};
    return next.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

bool IsMemoryDisplayMode(const MemoryDisplayMode& mode) {
    const bool sizeFits = mode.width > 0 && mode.width <= kMaxSide && mode.height > 0 && mode.height <= kMaxSide;
    return sizeFits && FormatOfDepth(mode.depth) != PixelFormat::kNone;
}

MemoryDisplay::MemoryDisplay(const MemoryDisplayMode& mode)
    : format_(FormatOfDepth(mode.depth)), size_{mode.width, mode.height} {}

const uint32_t* MemoryDisplay::Palette() const {
    return PaletteOf(format_);
}

bool MemoryDisplay::ChangeDepth(int depth) {
    const PixelFormat format = FormatOfDepth(depth);
    if (format == PixelFormat::kNone) return false;
    format_ = format;
    return true;
}

WindowId MemoryDisplay::CreateWindow(const DisplayWindowInfo& info) {
    const LayerGuard guard(mutex_);
    if (info.parent != 0 && windows_.count(info.parent) == 0) return 0;
    const WindowId id = NextWindow();
    Window& window = windows_[id];
    window.parent = info.parent;
    window.place = {info.x, info.y, info.width, info.height};
    return id;
}

void MemoryDisplay::DestroyWindow(WindowId id) {
    const LayerGuard guard(mutex_);
    windows_.erase(id);
}

void MemoryDisplay::Move(WindowId id, int x, int y, int width, int height) {
    const LayerGuard guard(mutex_);
    if (const auto found = windows_.find(id); found != windows_.end()) found->second.place = {x, y, width, height};
}

void MemoryDisplay::SetFullScreen(WindowId id, bool on) {
    const LayerGuard guard(mutex_);
    const auto found = windows_.find(id);
    if (found == windows_.end() || found->second.fullScreen == on) return;
    Window& window = found->second;
    window.fullScreen = on;
    if (on) {
        window.beforeFullScreen = window.place;
        window.place = {0, 0, size_.cx, size_.cy};
    } else {
        window.place = window.beforeFullScreen;
    }
}

bool MemoryDisplay::GetScreenRect(WindowId id, RECT* rect) const {
    const LayerGuard guard(mutex_);
    auto found = windows_.find(id);
    if (found == windows_.end()) return false;
    Place place = found->second.place;
    for (found = windows_.find(found->second.parent); found != windows_.end();
         found = windows_.find(found->second.parent)) {
        place.x += found->second.place.x;
        place.y += found->second.place.y;
    }
    *rect = {place.x, place.y, place.x + place.width, place.y + place.height};
    return true;
}

bool MemoryDisplay::MakePicture(WindowId id, int width, int height, Raster* raster) {
    const LayerGuard guard(mutex_);
    const auto found = windows_.find(id);
    if (found == windows_.end() || width <= 0 || height <= 0 || width > kMaxSide || height > kMaxSide) return false;
    Window& window = found->second;
    const PixelFormat format = format_;
    if (window.raster.width != width || window.raster.height != height || window.raster.format != format) {
        const auto pitch = static_cast<int32_t>(DibPitch(BitsPerPixel(format), width));
        std::unique_ptr<uint8_t[]> pixels(new (std::nothrow) uint8_t[static_cast<size_t>(pitch) * height]());
        if (!pixels) return false;
        window.pixels = std::move(pixels);
        window.raster = {window.pixels.get(), pitch, width, height, format, PaletteOf(format)};
    }
    *raster = window.raster;
    return true;
}

void MemoryDisplay::DropPicture(WindowId id) {
    const LayerGuard guard(mutex_);
    if (const auto found = windows_.find(id); found != windows_.end()) {
        found->second.pixels.reset();
        found->second.raster = Raster();
    }
}

}  // namespace tdkp
