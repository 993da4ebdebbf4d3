// A font of one size: measuring texts and drawing them as a mask of coverage. Any thread. The font itself is
// looked for when it is first measured or drawn with.
#pragma once

#include <wingdi.h>

#include <cstdint>
#include <string_view>
#include <vector>

struct _cairo_scaled_font;  // of cairo

namespace tdkp {

struct FontMetrics {
    int ascent = 0;
    int descent = 0;
    int leading = 0;  // room inside of the cell for accents
    int lineGap = 0;
    int averageWidth = 0;  // of the letters A to Z and a to z, as dialog units are counted
    int maxWidth = 0;
    int Height() const { return ascent + descent; }
};

// Coverage of pixels from 0 to 255, rows without padding. (x, y) is the place of its upper left corner relative
// to the text's own: the pen's start and the top of the line.
struct TextMask {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    std::vector<uint8_t> coverage;
};

class FontFace {
public:
    explicit FontFace(const LOGFONTA& description) : description_(description) {}
    ~FontFace();
    FontFace(const FontFace&) = delete;
    FontFace& operator=(const FontFace&) = delete;

    FontMetrics Metrics() const;
    // Pixels from the start of the text to the start of what would follow it.
    int Advance(std::string_view text) const;
    TextMask Draw(std::string_view text) const;

private:
    void Load() const;

    const LOGFONTA description_;
    // Guarded by the one lock of all text.
    mutable _cairo_scaled_font* font_ = nullptr;
    mutable FontMetrics metrics_;
};

}  // namespace tdkp
