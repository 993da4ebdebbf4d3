#include "platform/gdi/FontFace.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <string>

#include "platform/kernel/Dispatcher.h"
#include "platform/kernel/Immortal.h"
#include "platform/kernel/Utf16Text.h"

// Null without a leak sanitizer in the process.
extern "C" {
__attribute__((weak)) void __lsan_disable();
__attribute__((weak)) void __lsan_enable();
}

namespace tdkp {
namespace {

// The font library refers to its own memory by offsets, which the leak sanitizer can't follow.
class LibraryMemory {
public:
    LibraryMemory() {
        if (__lsan_disable != nullptr) __lsan_disable();
    }
    ~LibraryMemory() {
        if (__lsan_enable != nullptr) __lsan_enable();
    }
    LibraryMemory(const LibraryMemory&) = delete;
    LibraryMemory& operator=(const LibraryMemory&) = delete;
};

constexpr LONG kDefaultHeight = -12;
constexpr int kMaxTextPixels = 32767;  // cairo's own limit
constexpr LONG kMaxFontHeight = 2000;
constexpr const char* kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
constexpr int kLetterCount = 52;

struct TextMutex {
    LayerMutex mutex;
};

// One for all text: fonts share the library's caches.
LayerMutex& TextLock() {
    return Immortal<TextMutex>().mutex;
}

struct SurfaceDeleter {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct ContextDeleter {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};
using SurfacePtr = std::unique_ptr<cairo_surface_t, SurfaceDeleter>;
using ContextPtr = std::unique_ptr<cairo_t, ContextDeleter>;

// Bytes of the UTF-8 sequence that `text` begins with, 0 if it begins with none.
size_t SequenceLength(std::string_view text) {
    const auto byte = [&](size_t i) { return static_cast<uint8_t>(text[i]); };
    const uint8_t lead = byte(0);
    const size_t length = lead < 0x80                   ? 1
                          : lead >= 0xC2 && lead < 0xE0 ? 2
                          : lead >= 0xE0 && lead < 0xF0 ? 3
                          : lead >= 0xF0 && lead < 0xF5 ? 4
                                                        : 0;
    if (length > text.size()) return 0;
    for (size_t i = 1; i < length; ++i) {
        if (!IsContinuation(text[i])) return 0;
    }
    const bool tooLong = (lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xF0 && byte(1) < 0x90);
    const bool noCharacter = (lead == 0xED && byte(1) > 0x9F) || (lead == 0xF4 && byte(1) > 0x8F);
    return tooLong || noCharacter ? 0 : length;
}

// Valid UTF-8 without control characters; what isn't UTF-8 is taken byte for byte as Latin-1.
std::string DrawableText(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const size_t length = SequenceLength(text);
        const uint8_t byte = static_cast<uint8_t>(text[0]);
        if (length == 0) {
            out += static_cast<char>(0xC0 | byte >> 6);
            out += static_cast<char>(0x80 | (byte & 0x3F));
        } else if (byte < ' ' || byte == 0x7F) {
            out += ' ';
        } else {
            out += text.substr(0, length);
        }
        text.remove_prefix(std::max<size_t>(length, 1));
    }
    return out;
}

std::string FamilyOf(const LOGFONTA& description) {
    const size_t length = strnlen(description.lfFaceName, LF_FACESIZE);
    const std::string_view name(description.lfFaceName, length);
    const bool fixed = (description.lfPitchAndFamily & 3) == FIXED_PITCH;
    // The names that dialogs ask for stand for whatever the system's own font is.
    const bool isDefault = name.empty() || name.starts_with("MS ") || name == "System" || name == "Helv";
    return isDefault ? (fixed ? "monospace" : "sans-serif") : std::string(name);
}

cairo_scaled_font_t* MakeFont(const LOGFONTA& description, double emHeight) {
    const cairo_font_slant_t slant = description.lfItalic != 0 ? CAIRO_FONT_SLANT_ITALIC : CAIRO_FONT_SLANT_NORMAL;
    const cairo_font_weight_t weight =
        description.lfWeight >= (FW_NORMAL + FW_BOLD) / 2 ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL;
    cairo_font_face_t* face = cairo_toy_font_face_create(FamilyOf(description).c_str(), slant, weight);
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_SLIGHT);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_ON);
    cairo_matrix_t size, identity;
    cairo_matrix_init_scale(&size, emHeight, emHeight);
    cairo_matrix_init_identity(&identity);
    cairo_scaled_font_t* font = cairo_scaled_font_create(face, &size, &identity, options);
    cairo_font_options_destroy(options);
    cairo_font_face_destroy(face);
    return font;
}

int Ceil(double value) {
    return static_cast<int>(std::ceil(value));
}

// A font whose em square has the height asked for, or whose cell does.
cairo_scaled_font_t* MakeFontOfHeight(const LOGFONTA& description) {
    LONG height = description.lfHeight == 0 ? kDefaultHeight : description.lfHeight;
    height = std::clamp(height, -kMaxFontHeight, kMaxFontHeight);
    if (height < 0) return MakeFont(description, -height);
    cairo_scaled_font_t* probe = MakeFont(description, kMaxFontHeight);
    cairo_font_extents_t extents;
    cairo_scaled_font_extents(probe, &extents);
    cairo_scaled_font_destroy(probe);
    const double cell = extents.ascent + extents.descent;
    return MakeFont(description, cell > 0 ? kMaxFontHeight * height / cell : height);
}

// Advance of a text, and with `bounds` where its ink lies relative to the start of the base line.
double Measure(cairo_scaled_font_t* font, std::string_view text, cairo_text_extents_t* bounds) {
    cairo_text_extents_t extents;
    cairo_scaled_font_text_extents(font, DrawableText(text).c_str(), &extents);
    if (bounds != nullptr) *bounds = extents;
    return extents.x_advance;
}

}  // namespace

FontFace::~FontFace() {
    LayerGuard guard(TextLock());
    if (font_ != nullptr) cairo_scaled_font_destroy(font_);
}

void FontFace::Load() const {
    if (font_ != nullptr) return;
    const LibraryMemory libraryMemory;
    font_ = MakeFontOfHeight(description_);
    cairo_font_extents_t extents;
    cairo_scaled_font_extents(font_, &extents);
    metrics_.ascent = Ceil(extents.ascent);
    metrics_.descent = Ceil(extents.descent);
    metrics_.lineGap = std::max(0, static_cast<int>(extents.height) - metrics_.Height());
    metrics_.maxWidth = Ceil(extents.max_x_advance);
    metrics_.averageWidth = static_cast<int>(std::lround(Measure(font_, kLetters, nullptr) / kLetterCount));
    cairo_matrix_t size;
    cairo_scaled_font_get_font_matrix(font_, &size);
    metrics_.leading = std::max(0, metrics_.Height() - static_cast<int>(std::lround(size.yy)));
}

FontMetrics FontFace::Metrics() const {
    LayerGuard guard(TextLock());
    Load();
    return metrics_;
}

int FontFace::Advance(std::string_view text) const {
    LayerGuard guard(TextLock());
    Load();
    return Ceil(Measure(font_, text, nullptr));
}

TextMask FontFace::Draw(std::string_view text) const {
    LayerGuard guard(TextLock());
    Load();
    cairo_text_extents_t ink;
    const int advance = Ceil(Measure(font_, text, &ink));
    TextMask mask;
    mask.x = std::min(0, static_cast<int>(std::floor(ink.x_bearing)));
    mask.y = std::min(0, metrics_.ascent + static_cast<int>(std::floor(ink.y_bearing)));
    mask.width = std::min(std::max(advance, Ceil(ink.x_bearing + ink.width)) - mask.x + 1, kMaxTextPixels);
    mask.height = std::max(metrics_.Height(), metrics_.ascent + Ceil(ink.y_bearing + ink.height)) - mask.y + 1;
    if (text.empty() || mask.width <= 0 || mask.height <= 0 || mask.height > kMaxTextPixels) return {};

    const SurfacePtr surface(cairo_image_surface_create(CAIRO_FORMAT_A8, mask.width, mask.height));
    const ContextPtr context(cairo_create(surface.get()));
    cairo_set_scaled_font(context.get(), font_);
    const double baseLine = metrics_.ascent - mask.y;
    cairo_move_to(context.get(), -mask.x, baseLine);
    cairo_show_text(context.get(), DrawableText(text).c_str());
    const double thickness = std::max(1, metrics_.ascent / 12);
    if (description_.lfUnderline != 0) cairo_rectangle(context.get(), -mask.x, baseLine + 1, advance, thickness);
    if (description_.lfStrikeOut != 0)
        cairo_rectangle(context.get(), -mask.x, baseLine - metrics_.ascent / 3, advance, thickness);
    cairo_fill(context.get());
    cairo_surface_flush(surface.get());
    const uint8_t* pixels = cairo_image_surface_get_data(surface.get());
    if (pixels == nullptr) return {};
    const int stride = cairo_image_surface_get_stride(surface.get());
    mask.coverage.resize(static_cast<size_t>(mask.width) * static_cast<size_t>(mask.height));
    for (int y = 0; y < mask.height; ++y) {
        std::memcpy(mask.coverage.data() + static_cast<size_t>(y) * static_cast<size_t>(mask.width),
                    pixels + static_cast<ptrdiff_t>(y) * stride, static_cast<size_t>(mask.width));
    }
    return mask;
}

}  // namespace tdkp
