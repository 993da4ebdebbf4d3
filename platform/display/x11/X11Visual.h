// Which visual of a screen the layer's windows take, and the pixels it means.
#pragma once

#include <xcb/xcb.h>

#include <optional>

#include "platform/display/memory/FixedPalette.h"
#include "platform/gdi/Raster.h"

namespace tdkp {

struct X11Visual {
    xcb_visualtype_t type = {};
    uint8_t depth = 0;
    uint8_t bitsPerPixel = 0;
    uint8_t scanlinePad = 0;  // bits
    PixelFormat format = PixelFormat::kNone;
};

// The root's own visual if its pixels have a PixelFormat, else the nearest visual whose pixels have one.
std::optional<X11Visual> ChooseX11Visual(const xcb_setup_t& setup, const xcb_screen_t& screen);

// The colours of an 8-bit visual. Where its colormap can be written to, a colour cube and some greys are
// allocated in `*colormap` for everybody to share; if too few cells are free there, `*colormap` becomes
// a private one. Entries that nobody promised to keep have the colour of entry 0.
Palette MakeX11Palette(xcb_connection_t* connection, xcb_window_t root, const xcb_visualtype_t& visual,
                       xcb_colormap_t* colormap);

}  // namespace tdkp
