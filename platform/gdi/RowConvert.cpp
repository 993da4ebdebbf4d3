#include "platform/gdi/RowConvert.h"

#include <algorithm>
#include <cstring>

#include "platform/gdi/PixelCodec.h"

namespace tdkp {
namespace {

bool SamePalette(const Raster& a, const Raster& b) {
    const int entries = a.format == PixelFormat::kMono ? kMonoEntries : kPaletteEntries;
    return a.palette == b.palette || std::equal(a.palette, a.palette + entries, b.palette);
}

bool SameBits(const Raster& from, const Raster& to) {
    if (from.format != to.format) return false;
    return BitsPerPixel(from.format) > 8 || SamePalette(from, to);
}

void CopyMonoRow(const uint8_t* from, int fromX, uint8_t* to, int toX, int count) {
    using Codec = PixelCodec<PixelFormat::kMono>;
    if (from == to && fromX < toX) {
        for (int i = count - 1; i >= 0; --i) Codec::WriteRaw(to, toX + i, Codec::ReadRaw(from, fromX + i));
        return;
    }
    for (int i = 0; i < count; ++i) Codec::WriteRaw(to, toX + i, Codec::ReadRaw(from, fromX + i));
}

}  // namespace

void CopyRow(PixelFormat format, const uint8_t* from, int fromX, uint8_t* to, int toX, int count) {
    if (format == PixelFormat::kMono) {
        CopyMonoRow(from, fromX, to, toX, count);
        return;
    }
    const ptrdiff_t size = BitsPerPixel(format) / 8;
    std::memmove(to + toX * size, from + fromX * size, static_cast<size_t>(count * size));
}

RowConverter::RowConverter(const Raster& from, const Raster& to, const MonoKey& key)
    : fromPalette_(from.palette),
      toPalette_(to.palette),
      key_(key),
      same_(SameBits(from, to)),
      row_(Choose(from.format, to.format)) {}

void RowConverter::Convert(const uint8_t* from, int fromX, uint8_t* to, int toX, int count) {
    row_(*this, from, fromX, to, toX, count);
}

template <PixelFormat kFrom, PixelFormat kTo>
void RowConverter::Row(RowConverter& self, const uint8_t* from, int fromX, uint8_t* to, int toX, int count) {
    using From = PixelCodec<kFrom>;
    using To = PixelCodec<kTo>;
    if (self.same_) {
        CopyRow(kTo, from, fromX, to, toX, count);
        return;
    }
    for (int i = 0; i < count; ++i) {
        const uint32_t color = From::Decode(From::ReadRaw(from, fromX + i), self.fromPalette_);
        uint32_t raw;
        if constexpr (kTo == PixelFormat::kMono)
            raw = self.key_.use ? color == self.key_.color : To::Encode(color, self.toPalette_);
        else if constexpr (kTo == PixelFormat::kIndexed8)
            raw = self.FindIndex(color);
        else
            raw = To::Encode(color, nullptr);
        To::WriteRaw(to, toX + i, raw);
    }
}

uint32_t RowConverter::FindIndex(uint32_t color) {
    // Neighbouring colours of a picture differ in low bits, so those choose the entry.
    Entry& entry = entries_[(color ^ (color >> 5) ^ (color >> 11)) % kEntries];
    if (entry.color != color) entry = {color, NearestEntry(toPalette_, kPaletteEntries, color)};
    return entry.index;
}

template <PixelFormat kFrom>
RowConverter::RowFunction RowConverter::ChooseTarget(PixelFormat to) {
    switch (to) {
        case PixelFormat::kNone:
            break;
        case PixelFormat::kMono:
            return &Row<kFrom, PixelFormat::kMono>;
        case PixelFormat::kIndexed8:
            return &Row<kFrom, PixelFormat::kIndexed8>;
        case PixelFormat::kRgb555:
            return &Row<kFrom, PixelFormat::kRgb555>;
        case PixelFormat::kRgb565:
            return &Row<kFrom, PixelFormat::kRgb565>;
        case PixelFormat::kRgb24:
            return &Row<kFrom, PixelFormat::kRgb24>;
        case PixelFormat::kRgb32:
            return &Row<kFrom, PixelFormat::kRgb32>;
        case PixelFormat::kBgr32:
            return &Row<kFrom, PixelFormat::kBgr32>;
    }
    return [](RowConverter&, const uint8_t*, int, uint8_t*, int, int) {};
}

RowConverter::RowFunction RowConverter::Choose(PixelFormat from, PixelFormat to) {
    switch (from) {
        case PixelFormat::kNone:
            break;
        case PixelFormat::kMono:
            return ChooseTarget<PixelFormat::kMono>(to);
        case PixelFormat::kIndexed8:
            return ChooseTarget<PixelFormat::kIndexed8>(to);
        case PixelFormat::kRgb555:
            return ChooseTarget<PixelFormat::kRgb555>(to);
        case PixelFormat::kRgb565:
            return ChooseTarget<PixelFormat::kRgb565>(to);
        case PixelFormat::kRgb24:
            return ChooseTarget<PixelFormat::kRgb24>(to);
        case PixelFormat::kRgb32:
            return ChooseTarget<PixelFormat::kRgb32>(to);
        case PixelFormat::kBgr32:
            return ChooseTarget<PixelFormat::kBgr32>(to);
    }
    return ChooseTarget<PixelFormat::kNone>(PixelFormat::kNone);
}

}  // namespace tdkp
