#include <windows.h>

#include <algorithm>

TDKP_API BOOL SetRect(RECT* rect, INT left, INT top, INT right, INT bottom) {
    if (rect == nullptr) return FALSE;
    *rect = RECT{left, top, right, bottom};
    return TRUE;
}

TDKP_API BOOL IsRectEmpty(const RECT* rect) {
    return rect == nullptr || rect->left >= rect->right || rect->top >= rect->bottom;
}

TDKP_API BOOL PtInRect(const RECT* rect, POINT point) {
    return rect != nullptr && point.x >= rect->left && point.x < rect->right && point.y >= rect->top &&
           point.y < rect->bottom;
}

TDKP_API BOOL OffsetRect(RECT* rect, INT x, INT y) {
    if (rect == nullptr) return FALSE;
    *rect = RECT{rect->left + x, rect->top + y, rect->right + x, rect->bottom + y};
    return TRUE;
}

TDKP_API BOOL InflateRect(RECT* rect, INT x, INT y) {
    if (rect == nullptr) return FALSE;
    *rect = RECT{rect->left - x, rect->top - y, rect->right + x, rect->bottom + y};
    return TRUE;
}

TDKP_API BOOL IntersectRect(RECT* out, const RECT* first, const RECT* second) {
    if (out == nullptr || first == nullptr || second == nullptr) return FALSE;
    const RECT both = {std::max(first->left, second->left), std::max(first->top, second->top),
                       std::min(first->right, second->right), std::min(first->bottom, second->bottom)};
    *out = IsRectEmpty(&both) ? RECT{0, 0, 0, 0} : both;
    return !IsRectEmpty(out);
}

TDKP_API BOOL UnionRect(RECT* out, const RECT* first, const RECT* second) {
    if (out == nullptr || first == nullptr || second == nullptr) return FALSE;
    RECT hull = {0, 0, 0, 0};
    if (IsRectEmpty(first))
        hull = IsRectEmpty(second) ? hull : *second;
    else if (IsRectEmpty(second))
        hull = *first;
    else
        hull = RECT{std::min(first->left, second->left), std::min(first->top, second->top),
                    std::max(first->right, second->right), std::max(first->bottom, second->bottom)};
    *out = hull;
    return !IsRectEmpty(out);
}
