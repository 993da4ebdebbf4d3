#include "companions/qzcolor/Conversion.h"

#include <array>
#include <utility>

#include <tdkviz/com.h>

#include "companions/qzcolor/ExactRoad.h"
#include "companions/qzcolor/LibyuvRoad.h"
#include "companions/qzcolor/Palette.h"
#include "companions/qzcolor/RowScaler.h"
#include "companions/qzcolor/Scratch.h"
#include "companions/qzcolor/YuvScale.h"

namespace qzcolor {

namespace {

constexpr bool IsYuv(uint32_t format) {
    return format == FormatI420 || format == FormatYV12 || format == FormatYUY2 || format == FormatUYVY;
}
constexpr bool IsReadable(uint32_t format) {
    return (format >= FormatRGB32 && format <= FormatRGB555) || format == FormatARGB ||
           (format >= FormatBGR32 && format <= FormatBGR555);
}
constexpr bool IsWritable(uint32_t format) {
    return IsReadable(format) || IsYuv(format) || format == FormatRGB8;
}

// RGB32 pixels in memory of one conversion.
class ScratchWords {
public:
    ScratchWords(int32_t width, int32_t height)
        : scratch_(size_t(width) * size_t(height) * sizeof(uint32_t)),
          rows{scratch_.Bytes(), ptrdiff_t{width} * 4, width, height} {}

private:
    const Scratch scratch_;

public:
    const Rows rows;
    explicit operator bool() const { return rows.first != nullptr; }
};

// A doubled picture keeps its pixels as they are, all others are interpolated.
bool ScaleWords(const Rows& words, const Rows& to) {
    if (IsDouble(words, to)) return DoubleRows(words, FormatRGB32, to);
    RowScaler scaler(words, to.width, to.height);
    if (!scaler) return false;
    for (int32_t y = 0; y < to.height; ++y) scaler.MakeRow(y, to.At(y));
    return true;
}

// In other formats each row is packed while it is near.
bool ScaleAndPack(const Rows& words, uint32_t format, const Rows& to) {
    RowScaler scaler(words, to.width, to.height);
    if (!scaler) return false;
    const bool inPlace = RgbBytesPerPixel(format) == 4;
    for (int32_t y = 0; y < to.height; ++y) {
        const Rows out = {to.At(y), 0, to.width, 1};
        const Rows line = {inPlace ? out.first : scaler.SpareRow(), 0, to.width, 1};
        scaler.MakeRow(y, line.first);
        PackRows(line, format, out);
    }
    return true;
}

bool ConvertRgb(const Rows& words, uint32_t to, const Rows& out) {
    const bool isSame = words.HasSizeOf(out), isDouble = IsDouble(words, out);
    if (!isSame && !isDouble) return to == FormatRGB32 ? ScaleWords(words, out) : ScaleAndPack(words, to, out);
    // Bottom-up pictures are the rule here, and memory is written faster upwards.
    if (out.step < 0) return ConvertRgb(words.Reversed(), to, out.Reversed());
    if (isDouble) return DoubleRows(words, to, out);
    PackRows(words, to, out);
    return true;
}

bool ConvertYuv(const Rows& words, uint32_t to, const Image& destination) {
    if (words.width == destination.rectWidth && words.height == destination.rectHeight) {
        PackYuv(words, to, destination);
        return true;
    }
    const ScratchWords scaled(destination.rectWidth, destination.rectHeight);
    if (!scaled || !ScaleWords(words, scaled.rows)) return false;
    PackYuv(scaled.rows, to, destination);
    return true;
}

int32_t ConvertWords(const Rows& words, uint32_t to, const Image& destination) {
    const bool done = IsYuv(to) ? ConvertYuv(words, to, destination)
                                : ConvertRgb(words, to, destination.Pixels(RgbBytesPerPixel(to)));
    return done ? S_OK : E_OUTOFMEMORY;
}

template <uint32_t From, uint32_t To>
int32_t ConverterOf(void* destination, int32_t destinationWidth, int32_t destinationHeight, int32_t destinationPitch,
                    int32_t destinationX, int32_t destinationY, int32_t destinationRectWidth,
                    int32_t destinationRectHeight, const void* source, int32_t sourceWidth, int32_t sourceHeight,
                    int32_t sourcePitch, int32_t sourceX, int32_t sourceY, int32_t sourceRectWidth,
                    int32_t sourceRectHeight) {
    return Convert(From,
                   {static_cast<uint8_t*>(const_cast<void*>(source)), sourceWidth, sourceHeight, sourcePitch, sourceX,
                    sourceY, sourceRectWidth, sourceRectHeight},
                   To,
                   {static_cast<uint8_t*>(destination), destinationWidth, destinationHeight, destinationPitch,
                    destinationX, destinationY, destinationRectWidth, destinationRectHeight});
}

template <uint32_t From, uint32_t To>
constexpr ColorConverterFunction Entry() {
    if constexpr ((IsReadable(From) && IsWritable(To)) || (IsYuv(From) && From == To)) return ConverterOf<From, To>;
    return nullptr;
}

// By from * kFormatCount + to.
template <size_t... Pair>
constexpr auto MakeConverters(std::index_sequence<Pair...>) {
    return std::array<ColorConverterFunction, sizeof...(Pair)>{Entry<Pair / kFormatCount, Pair % kFormatCount>()...};
}
constexpr auto kConverters = MakeConverters(std::make_index_sequence<kFormatCount * kFormatCount>());

}  // namespace

int32_t Convert(uint32_t from, Image source, uint32_t to, Image destination) {
    if (!source.Clip() || !destination.Clip()) return S_OK;
    if (!IsSound(from, source) || !IsSound(to, destination)) return E_INVALIDARG;
    if (IsYuv(to) && ((destination.x | destination.y) & 1)) return E_INVALIDARG;
    if (IsYuv(from)) {
        if ((source.x | source.y) & 1) return E_INVALIDARG;
        return ScaleYuv(from, source, destination) ? S_OK : E_OUTOFMEMORY;
    }
    const int32_t bytesPerPixel = RgbBytesPerPixel(from);
    const Rows pixels = source.Pixels(bytesPerPixel);
    if (from == to) {
        const Rows out = destination.Pixels(bytesPerPixel);
        if (pixels.HasSizeOf(out)) {
            CopyRows(pixels, out, bytesPerPixel);
            return S_OK;
        }
        // The order of colours makes no difference then.
        if (bytesPerPixel == 4) from = to = FormatRGB32;
    }
    if (IsPlainWord(from)) return ConvertWords(pixels, to, destination);
    const ScratchWords words(pixels.width, pixels.height);
    if (!words) return E_OUTOFMEMORY;
    Unpack(pixels, from, words.rows);
    return ConvertWords(words.rows, to, destination);
}

ColorConverterFunction FindConverter(uint32_t from, uint32_t to) {
    if (from >= kFormatCount || to >= kFormatCount || (to == FormatRGB8 && !HasPalette())) return nullptr;
    return kConverters[from * kFormatCount + to];
}

uint32_t FindTargets(uint32_t from, bool withYuv, uint32_t* formats, uint32_t capacity) {
    uint32_t count = 0;
    for (uint32_t to = 0; to < kFormatCount; ++to) {
        if ((!withYuv && IsYuv(to)) || !FindConverter(from, to)) continue;
        if (formats && count < capacity) formats[count] = to;
        ++count;
    }
    return count;
}

}  // namespace qzcolor
