#include "platform/display/x11/X11Cursors.h"

#include <windows.h>

#include <cstring>

namespace tdkp {
namespace {

struct Shape {
    const char* resource;  // an IDC_ number
    uint16_t glyph;        // in the server's cursor font
};

const Shape kShapes[] = {
    {IDC_ARROW, 68},    {IDC_IBEAM, 152},  {IDC_WAIT, 150},   {IDC_CROSS, 34},   {IDC_SIZENWSE, 14},
    {IDC_SIZENESW, 12}, {IDC_SIZEWE, 108}, {IDC_SIZENS, 116}, {IDC_SIZEALL, 52}, {IDC_HAND, 60},
};

constexpr const char* kCursorFont = "cursor";

uint16_t GlyphOf(uint32_t shape) {
    for (const Shape& known : kShapes) {
        if (reinterpret_cast<uintptr_t>(known.resource) == shape) return known.glyph;
    }
    return kShapes[0].glyph;
}

}  // namespace

xcb_cursor_t X11Cursors::Get(uint32_t shape) {
    const LayerGuard guard(mutex_);
    xcb_cursor_t& cursor = cursors_[shape];
    if (cursor == 0) cursor = shape == 0 ? MakeEmpty() : MakeGlyph(GlyphOf(shape));
    return cursor;
}

xcb_cursor_t X11Cursors::MakeEmpty() const {
    xcb_connection_t* const connection = connection_.Get();
    const xcb_pixmap_t nothing = xcb_generate_id(connection);
    const xcb_gcontext_t gc = xcb_generate_id(connection);
    const xcb_cursor_t cursor = xcb_generate_id(connection);
    const xcb_rectangle_t all = {0, 0, 1, 1};
    const uint32_t transparent = 0;
    xcb_create_pixmap(connection, 1, nothing, connection_.Screen().root, all.width, all.height);
    xcb_create_gc(connection, gc, nothing, XCB_GC_FOREGROUND, &transparent);
    xcb_poly_fill_rectangle(connection, nothing, gc, 1, &all);
    xcb_create_cursor(connection, cursor, nothing, nothing, 0, 0, 0, 0, 0, 0, 0, 0);
    xcb_free_gc(connection, gc);
    xcb_free_pixmap(connection, nothing);
    return cursor;
}

xcb_cursor_t X11Cursors::MakeGlyph(uint16_t glyph) {
    constexpr uint16_t kWhite = 0xFFFF;
    xcb_connection_t* const connection = connection_.Get();
    if (font_ == 0) {
        font_ = xcb_generate_id(connection);
        xcb_open_font(connection, font_, static_cast<uint16_t>(std::strlen(kCursorFont)), kCursorFont);
    }
    const xcb_cursor_t cursor = xcb_generate_id(connection);
    // In that font each shape is followed by its mask.
    xcb_create_glyph_cursor(connection, cursor, font_, font_, glyph, static_cast<uint16_t>(glyph + 1), 0, 0, 0, kWhite,
                            kWhite, kWhite);
    return cursor;
}

}  // namespace tdkp
