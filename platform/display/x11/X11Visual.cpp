#include "platform/display/x11/X11Visual.h"

#include <algorithm>
#include <bit>
#include <vector>

#include "platform/display/x11/X11Reply.h"

namespace tdkp {
namespace {

struct TrueColorFormat {
    uint8_t depth, bitsPerPixel;
    uint32_t red, green, blue;
    PixelFormat format;
};

constexpr TrueColorFormat kTrueColorFormats[] = {
    {24, 32, 0xFF0000, 0xFF00, 0xFF, PixelFormat::kRgb32}, {24, 32, 0xFF, 0xFF00, 0xFF0000, PixelFormat::kBgr32},
    {24, 24, 0xFF0000, 0xFF00, 0xFF, PixelFormat::kRgb24}, {16, 16, 0xF800, 0x7E0, 0x1F, PixelFormat::kRgb565},
    {15, 16, 0x7C00, 0x3E0, 0x1F, PixelFormat::kRgb555},   {32, 32, 0xFF0000, 0xFF00, 0xFF, PixelFormat::kRgb32},
    {32, 32, 0xFF, 0xFF00, 0xFF0000, PixelFormat::kBgr32},
};

constexpr uint8_t kIndexedDepth = 8;
// In this order, where the root's own visual won't do. 32 comes late: its top byte may mean transparency.
constexpr uint8_t kDepthsByPreference[] = {24, 16, 15, 32, kIndexedDepth};

constexpr int kLargestCube = 6;
constexpr int kSmallestCube = 4;
constexpr int kSharedGreys = 16;
constexpr int kColorScale = 257;  // 8 bits to the protocol's 16

PixelFormat FormatOf(const xcb_visualtype_t& visual, uint8_t depth, uint8_t bitsPerPixel) {
    if (depth == kIndexedDepth) return bitsPerPixel == kIndexedDepth ? PixelFormat::kIndexed8 : PixelFormat::kNone;
    if (visual._class != XCB_VISUAL_CLASS_TRUE_COLOR) return PixelFormat::kNone;
    for (const TrueColorFormat& known : kTrueColorFormats) {
        if (known.depth == depth && known.bitsPerPixel == bitsPerPixel && known.red == visual.red_mask &&
            known.green == visual.green_mask && known.blue == visual.blue_mask)
            return known.format;
    }
    return PixelFormat::kNone;
}

std::vector<X11Visual> UsableVisuals(const xcb_setup_t& setup, const xcb_screen_t& screen) {
    std::vector<X11Visual> usable;
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem != 0; xcb_depth_next(&depth)) {
        const xcb_format_t* formats = xcb_setup_pixmap_formats(&setup);
        const xcb_format_t* end = formats + xcb_setup_pixmap_formats_length(&setup);
        const xcb_format_t* format =
            std::find_if(formats, end, [&](const xcb_format_t& each) { return each.depth == depth.data->depth; });
        if (format == end) continue;
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem != 0; xcb_visualtype_next(&visual)) {
            const PixelFormat pixels = FormatOf(*visual.data, depth.data->depth, format->bits_per_pixel);
            if (pixels != PixelFormat::kNone)
                usable.push_back(
                    {*visual.data, depth.data->depth, format->bits_per_pixel, format->scanline_pad, pixels});
        }
    }
    return usable;
}

uint32_t Rgb(uint16_t red, uint16_t green, uint16_t blue) {
    return static_cast<uint32_t>(red >> 8) << 16 | static_cast<uint32_t>(green >> 8) << 8 | blue >> 8;
}

uint32_t FieldOf(uint32_t pixel, uint32_t mask) {
    if (mask == 0) return 0;
    const int shift = std::countr_zero(mask);
    return ((pixel & mask) >> shift) * 255 / (mask >> shift);
}

Palette PaletteOfMasks(const xcb_visualtype_t& visual) {
    Palette palette = {};
    for (uint32_t pixel = 0; pixel < palette.size(); ++pixel)
        palette[pixel] = FieldOf(pixel, visual.red_mask) << 16 | FieldOf(pixel, visual.green_mask) << 8 |
                         FieldOf(pixel, visual.blue_mask);
    return palette;
}

Palette QueryColors(xcb_connection_t* connection, xcb_colormap_t colormap, int count) {
    Palette palette = {};
    uint32_t pixels[kPaletteSize];
    for (int pixel = 0; pixel < count; ++pixel) pixels[pixel] = static_cast<uint32_t>(pixel);
    const auto reply = X11Reply(xcb_query_colors_reply(
        connection, xcb_query_colors(connection, colormap, static_cast<uint32_t>(count), pixels), nullptr));
    if (reply) {
        const xcb_rgb_t* colors = xcb_query_colors_colors(reply.get());
        for (int pixel = 0; pixel < std::min(count, xcb_query_colors_colors_length(reply.get())); ++pixel)
            palette[pixel] = Rgb(colors[pixel].red, colors[pixel].green, colors[pixel].blue);
    }
    return palette;
}

// Allocates shared cells for `colors` and enters them at their pixels; all or none.
bool AllocateShared(xcb_connection_t* connection, xcb_colormap_t colormap, const std::vector<uint32_t>& colors,
                    Palette* palette, std::array<bool, kPaletteSize>* kept) {
    std::vector<xcb_alloc_color_cookie_t> cookies;
    for (const uint32_t color : colors)
        cookies.push_back(xcb_alloc_color(connection, colormap,
                                          static_cast<uint16_t>((color >> 16 & 255) * kColorScale),
                                          static_cast<uint16_t>((color >> 8 & 255) * kColorScale),
                                          static_cast<uint16_t>((color & 255) * kColorScale)));
    std::vector<uint32_t> allocated;
    for (const xcb_alloc_color_cookie_t cookie : cookies) {
        const auto reply = X11Reply(xcb_alloc_color_reply(connection, cookie, nullptr));
        if (!reply || reply->pixel >= kPaletteSize) continue;
        allocated.push_back(reply->pixel);
        (*palette)[reply->pixel] = Rgb(reply->red, reply->green, reply->blue);
        (*kept)[reply->pixel] = true;
    }
    if (allocated.size() == colors.size()) return true;
    for (const uint32_t pixel : allocated) (*kept)[pixel] = false;
    xcb_free_colors(connection, colormap, 0, static_cast<uint32_t>(allocated.size()), allocated.data());
    return false;
}

bool MakeSharedPalette(xcb_connection_t* connection, xcb_colormap_t colormap, Palette* palette) {
    std::array<bool, kPaletteSize> kept = {};
    int levels = kLargestCube;
    for (; levels >= kSmallestCube; --levels) {
        std::vector<uint32_t> cube;
        for (int index = 0; index < levels * levels * levels; ++index) cube.push_back(CubeColor(levels, index));
        if (AllocateShared(connection, colormap, cube, palette, &kept)) break;
    }
    if (levels < kSmallestCube) return false;
    std::array<bool, kPaletteSize> keptGreys = {};
    std::vector<uint32_t> greys;
    for (uint32_t grey = 1; grey <= kSharedGreys; ++grey) greys.push_back(grey * 255 / (kSharedGreys + 1) * 0x010101u);
    AllocateShared(connection, colormap, greys, palette, &keptGreys);
    for (int pixel = 0; pixel < kPaletteSize; ++pixel) {
        if (!kept[pixel] && !keptGreys[pixel]) (*palette)[pixel] = (*palette)[0];
    }
    return true;
}

Palette MakePrivatePalette(xcb_connection_t* connection, xcb_window_t root, const xcb_visualtype_t& visual,
                           xcb_colormap_t* colormap) {
    *colormap = xcb_generate_id(connection);
    xcb_create_colormap(connection, XCB_COLORMAP_ALLOC_ALL, *colormap, root, visual.visual_id);
    const Palette& palette = FixedPalette();
    std::vector<xcb_coloritem_t> items;
    for (uint32_t pixel = 0; pixel < palette.size(); ++pixel)
        items.push_back({pixel, static_cast<uint16_t>((palette[pixel] >> 16 & 255) * kColorScale),
                         static_cast<uint16_t>((palette[pixel] >> 8 & 255) * kColorScale),
                         static_cast<uint16_t>((palette[pixel] & 255) * kColorScale),
                         XCB_COLOR_FLAG_RED | XCB_COLOR_FLAG_GREEN | XCB_COLOR_FLAG_BLUE, 0});
    xcb_store_colors(connection, *colormap, static_cast<uint32_t>(items.size()), items.data());
    return palette;
}

}  // namespace

std::optional<X11Visual> ChooseX11Visual(const xcb_setup_t& setup, const xcb_screen_t& screen) {
    const std::vector<X11Visual> usable = UsableVisuals(setup, screen);
    for (const X11Visual& visual : usable) {
        if (visual.type.visual_id == screen.root_visual) return visual;
    }
    for (const uint8_t depth : kDepthsByPreference) {
        for (const X11Visual& visual : usable) {
            if (visual.depth == depth) return visual;
        }
    }
    return std::nullopt;
}

Palette MakeX11Palette(xcb_connection_t* connection, xcb_window_t root, const xcb_visualtype_t& visual,
                       xcb_colormap_t* colormap) {
    switch (visual._class) {
        case XCB_VISUAL_CLASS_TRUE_COLOR:
        case XCB_VISUAL_CLASS_DIRECT_COLOR:
            return PaletteOfMasks(visual);
        case XCB_VISUAL_CLASS_STATIC_GRAY:
        case XCB_VISUAL_CLASS_STATIC_COLOR:
            return QueryColors(connection, *colormap, std::min<int>(visual.colormap_entries, kPaletteSize));
        default:
            break;
    }
    Palette palette = {};
    if (MakeSharedPalette(connection, *colormap, &palette)) return palette;
    return MakePrivatePalette(connection, root, visual, colormap);
}

}  // namespace tdkp
