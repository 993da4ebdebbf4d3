// Draws text with the font and the colours of a device context.
#pragma once

#include <windef.h>

#include <string_view>

#include "platform/gdi/DrawTarget.h"
#include "platform/gdi/GdiObject.h"

namespace tdkp {

class TextPainter {
public:
    TextPainter(const DeviceContext& dc, DrawTarget& target) : dc_(dc), target_(target) {}

    // The upper left corner of the text's cell; nothing is drawn outside of `limit`.
    void Draw(int x, int y, std::string_view text, const RECT& limit);
    // A line below the letters of a text that begins at x.
    void Underline(int x, int y, int width, const RECT& limit);

private:
    void Blend(const TextMask& mask, int x, int y, const RECT& limit);
    void BlendRow(const uint8_t* coverage, int x, int y, int count, uint32_t color);

    const DeviceContext& dc_;
    DrawTarget& target_;
};

}  // namespace tdkp
