// How much room texts take.
#pragma once

#include <windows.h>

#include <string>

namespace tdkp {

// In the font of a device context; DT_ flags.
SIZE TextSize(HDC dc, const std::string& text, UINT format);

// In one font, before there is a window to draw in.
class TextMeasure {
public:
    // Null takes the system's font.
    explicit TextMeasure(HFONT font);
    ~TextMeasure();
    TextMeasure(const TextMeasure&) = delete;
    TextMeasure& operator=(const TextMeasure&) = delete;

    TEXTMETRICA Metrics() const;
    SIZE Size(const std::string& text, UINT format) const { return TextSize(dc_, text, format); }

private:
    const HDC dc_;
    const HGDIOBJ former_;
};

}  // namespace tdkp
