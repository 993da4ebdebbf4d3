#include "platform/gdi/TextPainter.h"

#include "platform/gdi/PixelCodec.h"
#include "platform/gdi/Rects.h"

namespace tdkp {
namespace {

constexpr uint32_t kFull = 255;

// Channel by channel, to the nearest.
uint32_t Mix(uint32_t below, uint32_t above, uint32_t coverage) {
    uint32_t mixed = 0;
    for (int shift = 0; shift <= 16; shift += 8) {
        const uint32_t a = (below >> shift) & kFull;
        const uint32_t b = (above >> shift) & kFull;
        mixed |= ((a * (kFull - coverage) + b * coverage + kFull / 2) / kFull) << shift;
    }
    return mixed;
}

}  // namespace

void TextPainter::BlendRow(const uint8_t* coverage, int x, int y, int count, uint32_t color) {
    const Raster& raster = target_.Pixels();
    for (int i = 0; i < count; ++i) {
        if (coverage[i] == 0) continue;
        const uint32_t mixed = coverage[i] == kFull ? color : Mix(ReadColor(raster, x + i, y), color, coverage[i]);
        WriteRaw(raster, x + i, y, EncodeColor(raster, mixed));
    }
}

void TextPainter::Blend(const TextMask& mask, int x, int y, const RECT& limit) {
    const uint32_t color = ColorFromRef(dc_.textColor);
    const RECT all = Intersect(limit, Shift({0, 0, mask.width, mask.height}, x, y));
    for (int i = 0; i < target_.ClipCount(); ++i) {
        const RECT visible = Intersect(all, target_.Clips()[i]);
        for (LONG row = visible.top; row < visible.bottom && !IsEmpty(visible); ++row) {
            const size_t at =
                static_cast<size_t>(row - y) * static_cast<size_t>(mask.width) + static_cast<size_t>(visible.left - x);
            BlendRow(mask.coverage.data() + at, visible.left, row, visible.right - visible.left, color);
        }
    }
    target_.Damage(all);
}

void TextPainter::Draw(int x, int y, std::string_view text, const RECT& limit) {
    if (text.empty() || target_.ClipCount() == 0) return;
    const FontFace& face = dc_.font->face;
    if (dc_.bkMode == OPAQUE)
        target_.Fill(Intersect(Shift({0, 0, face.Advance(text), face.Metrics().Height()}, x, y), limit), dc_.bkColor);
    const TextMask mask = face.Draw(text);
    if (!mask.coverage.empty()) Blend(mask, ClampToLong(int64_t{x} + mask.x), ClampToLong(int64_t{y} + mask.y), limit);
}

void TextPainter::Underline(int x, int y, int width, const RECT& limit) {
    const int below = dc_.font->face.Metrics().ascent + 1;
    target_.Fill(Intersect(Shift({0, below, width, below + 1}, x, y), limit), dc_.textColor);
}

}  // namespace tdkp
