#include "platform/user/MenuLayout.h"

#include <algorithm>

#include "platform/gdi/Resolution.h"
#include "platform/user/TextMeasure.h"
#include "platform/user/WindowPosition.h"

namespace tdkp {
namespace {

// At 96 pixels to the inch.
constexpr int kBorder = 3;
constexpr int kRowPadding = 3;  // above and below a text
constexpr int kSeparatorHeight = 9;
constexpr int kMarkWidth = 22;
constexpr int kArrowWidth = 20;
constexpr int kShortcutGap = 24;

// What the texts of some items take.
struct Measure {
    LONG label = 0;
    LONG shortcut = 0;

    LONG RowWidth() const {
        const LONG gap = shortcut > 0 ? LONG{ScaledPixels(kShortcutGap)} : 0;
        return MenuMarkWidth() + label + gap + shortcut + MenuArrowWidth();
    }
};

void Add(const TextMeasure& measure, const std::string& text, Measure* widest) {
    const MenuText parts = CutMenuText(text);
    widest->label = std::max(widest->label, measure.Size(parts.label, DT_SINGLELINE).cx);
    widest->shortcut = std::max(widest->shortcut, measure.Size(parts.shortcut, DT_SINGLELINE | DT_NOPREFIX).cx);
}

// How many items from `first` on fit one column; at least one.
size_t ItemsThatFit(const std::vector<LONG>& heights, size_t first, LONG room) {
    size_t end = first;
    for (LONG used = 0; end < heights.size() && (end == first || used + heights[end] <= room); ++end)
        used += heights[end];
    return end - first;
}

}  // namespace

LONG MenuMarkWidth() {
    return ScaledPixels(kMarkWidth);
}

LONG MenuArrowWidth() {
    return ScaledPixels(kArrowWidth);
}

LONG MenuBorder() {
    return ScaledPixels(kBorder);
}

MenuText CutMenuText(const std::string& text) {
    const size_t tab = text.find('\t');
    if (tab == std::string::npos) return {text, ""};
    return {text.substr(0, tab), text.substr(tab + 1)};
}

int MenuLayout::ItemAt(POINT point) const {
    for (size_t index = 0; index < items.size(); ++index) {
        if (PtInRect(&items[index], point)) return static_cast<int>(index);
    }
    return -1;
}

MenuLayout LayOutMenu(const MenuItems& items, HFONT font, SIZE screen) {
    const TextMeasure measure(font);
    const LONG row = measure.Metrics().tmHeight + 2 * ScaledPixels(kRowPadding);
    std::vector<LONG> heights;
    for (const MenuItem& item : items) heights.push_back(item.Separates() ? ScaledPixels(kSeparatorHeight) : row);

    const LONG border = MenuBorder();
    MenuLayout layout;
    LONG left = border;
    LONG bottom = border;
    for (size_t first = 0; first < items.size();) {
        const size_t end = first + ItemsThatFit(heights, first, screen.cy - 2 * border);
        Measure texts;
        for (size_t index = first; index < end; ++index) Add(measure, items[index].text, &texts);
        const LONG right = left + texts.RowWidth();
        LONG top = border;
        for (; first < end; ++first) {
            layout.items.push_back({left, top, right, top + heights[first]});
            top += heights[first];
        }
        left = right;
        bottom = std::max(bottom, top);
    }
    layout.size = {left + border, bottom + border};
    return layout;
}

POINT PlaceMenu(SIZE size, POINT at, UINT flags, SIZE screen) {
    POINT corner = at;
    if ((flags & TPM_RIGHTALIGN) != 0 || ((flags & TPM_CENTERALIGN) == 0 && at.x + size.cx > screen.cx))
        corner.x -= size.cx;
    else if ((flags & TPM_CENTERALIGN) != 0)
        corner.x -= size.cx / 2;
    if ((flags & TPM_BOTTOMALIGN) != 0 || ((flags & TPM_VCENTERALIGN) == 0 && at.y + size.cy > screen.cy))
        corner.y -= size.cy;
    else if ((flags & TPM_VCENTERALIGN) != 0)
        corner.y -= size.cy / 2;
    return OntoScreen(corner, size, screen);
}

POINT PlaceSubmenu(SIZE size, const RECT& item, SIZE screen) {
    const LONG border = MenuBorder();
    // It overlaps by the border, so that nothing lies between the two.
    POINT corner = {item.right, item.top - border};
    const bool fitsLeft = item.left >= size.cx;
    if (corner.x + size.cx > screen.cx && fitsLeft) corner.x = item.left - size.cx;
    return OntoScreen(corner, size, screen);
}

}  // namespace tdkp
