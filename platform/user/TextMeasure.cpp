#include "platform/user/TextMeasure.h"

namespace tdkp {

SIZE TextSize(HDC dc, const std::string& text, UINT format) {
    RECT box = {0, 0, 0, 0};
    DrawTextA(dc, text.c_str(), static_cast<INT>(text.size()), &box, format | DT_CALCRECT);
    return {box.right, box.bottom};
}

TextMeasure::TextMeasure(HFONT font)
    : dc_(CreateCompatibleDC(nullptr)),
      former_(SelectObject(dc_, font != nullptr ? font : GetStockObject(SYSTEM_FONT))) {}

TextMeasure::~TextMeasure() {
    SelectObject(dc_, former_);
    DeleteDC(dc_);
}

TEXTMETRICA TextMeasure::Metrics() const {
    TEXTMETRICA metrics = {};
    GetTextMetricsA(dc_, &metrics);
    return metrics;
}

}  // namespace tdkp
