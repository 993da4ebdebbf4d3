#include "platform/gdi/RasterBlit.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/gdi/PixelCodec.h"
#include "platform/gdi/Rects.h"

namespace tdkp {
namespace {

int Width(const RECT& rect) {
    return rect.right - rect.left;
}

// Room for one row of the target.
uint8_t* Scratch(std::vector<uint8_t>& buffer, PixelFormat format, int width) {
    buffer.resize(static_cast<size_t>(RowBytes(format, width)));
    return buffer.data();
}

// ---- Combining rows ----

uint64_t Combine(uint8_t rop, uint64_t pattern, uint64_t source, uint64_t destination) {
    uint64_t result = 0;
    for (int term = 0; term < 8; ++term) {
        if (((rop >> term) & 1) != 0) {
            result |= ((term & 4) != 0 ? pattern : ~pattern) & ((term & 2) != 0 ? source : ~source) &
                      ((term & 1) != 0 ? destination : ~destination);
        }
    }
    return result;
}

// Pattern and source rows hold the pixels alone; the target row is written from `toX` on.
class RowCombiner {
public:
    RowCombiner(PixelFormat format, uint8_t rop) : format_(format), rop_(rop) {}

    void Combine(const uint8_t* pattern, const uint8_t* source, uint8_t* to, int toX, int count) const {
        if (format_ == PixelFormat::kMono)
            CombineBits(pattern, source, to, toX, count);
        else
            CombineBytes(pattern, source, to + static_cast<ptrdiff_t>(toX) * BitsPerPixel(format_) / 8,
                         static_cast<size_t>(RowBytes(format_, count)));
    }

private:
    void CombineBytes(const uint8_t* pattern, const uint8_t* source, uint8_t* to, size_t bytes) const {
        for (size_t at = 0; at < bytes; at += sizeof(uint64_t)) {
            const size_t size = std::min(sizeof(uint64_t), bytes - at);
            uint64_t p = 0, s = 0, d = 0;
            std::memcpy(&p, pattern + at, size);
            std::memcpy(&s, source + at, size);
            std::memcpy(&d, to + at, size);
            d = tdkp::Combine(rop_, p, s, d);
            std::memcpy(to + at, &d, size);
        }
    }

    void CombineBits(const uint8_t* pattern, const uint8_t* source, uint8_t* to, int toX, int count) const {
        using Codec = PixelCodec<PixelFormat::kMono>;
        for (int i = 0; i < count; ++i) {
            const uint64_t bit =
                tdkp::Combine(rop_, Codec::ReadRaw(pattern, i), Codec::ReadRaw(source, i), Codec::ReadRaw(to, toX + i));
            Codec::WriteRaw(to, toX + i, static_cast<uint32_t>(bit & 1));
        }
    }

    const PixelFormat format_;
    const uint8_t rop_;
};

// ---- Source rows in the target's format ----

// Where along one axis each target pixel of [first, last) finds its source; pixels whose source lies outside
// of the source raster are taken off both ends.
class AxisMap {
public:
    AxisMap(int toLow, int toHigh, int fromLow, int fromHigh, bool mirror, int limit, LONG* first, LONG* last)
        : toLow_(toLow), fromLow_(fromLow), fromHigh_(fromHigh), mirror_(mirror), toSize_(int64_t{toHigh} - toLow) {
        while (*first < *last && !Inside(*first, limit)) ++*first;
        while (*first < *last && !Inside(*last - 1, limit)) --*last;
    }

    int64_t At(int to) const {
        const int64_t size = int64_t{fromHigh_} - fromLow_;
        const int64_t place = int64_t{to} - toLow_, step = size == toSize_ ? place : place * size / toSize_;
        return mirror_ ? int64_t{fromHigh_} - 1 - step : int64_t{fromLow_} + step;
    }

    bool Straight() const { return !mirror_ && toSize_ == int64_t{fromHigh_} - fromLow_; }

private:
    bool Inside(int to, int limit) const {
        const int64_t source = At(to);
        return source >= 0 && source < limit;
    }

    const int toLow_;
    const int fromLow_;
    const int fromHigh_;
    const bool mirror_;
    const int64_t toSize_;
};

template <typename Pixel>
void Gather(const uint8_t* from, const std::vector<int>& columns, uint8_t* to) {
    for (size_t i = 0; i < columns.size(); ++i)
        std::memcpy(to + i * sizeof(Pixel), from + static_cast<size_t>(columns[i]) * sizeof(Pixel), sizeof(Pixel));
}

struct Pixel24 {
    uint8_t bytes[3];
};

void GatherRow(PixelFormat format, const uint8_t* from, const std::vector<int>& columns, uint8_t* to) {
    switch (BitsPerPixel(format)) {
        case 8:
            Gather<uint8_t>(from, columns, to);
            break;
        case 16:
            Gather<uint16_t>(from, columns, to);
            break;
        case 24:
            Gather<Pixel24>(from, columns, to);
            break;
        case 32:
            Gather<uint32_t>(from, columns, to);
            break;
        default:
            for (size_t i = 0; i < columns.size(); ++i) {
                using Codec = PixelCodec<PixelFormat::kMono>;
                Codec::WriteRaw(to, static_cast<int>(i), Codec::ReadRaw(from, columns[i]));
            }
    }
}

// Kept from one job of a thread to the next, since many follow that are alike.
struct StretchMemory {
    std::vector<int> columns;
    std::vector<uint8_t> gathered;
};
thread_local StretchMemory stretchMemory;

// The part of a job inside of one clip rectangle. One at a time in a thread.
class ClippedBlit {
public:
    ClippedBlit(const BlitJob& job, RowConverter& converter, const RECT& visible)
        : job_(job),
          converter_(converter),
          visible_(visible),
          columns_(job.toRect.left, job.toRect.right, job.fromRect.left, job.fromRect.right, job.mirrorX,
                   job.from.width, &visible_.left, &visible_.right),
          rows_(job.toRect.top, job.toRect.bottom, job.fromRect.top, job.fromRect.bottom, job.mirrorY, job.from.height,
                &visible_.top, &visible_.bottom) {
        map_.clear();
    }

    const RECT& Visible() const { return visible_; }

    void Run() {
        if (IsEmpty(visible_)) return;
        if (!columns_.Straight()) MapColumns();
        if (job_.rop == kRopCopySource)
            CopyRows();
        else
            CombineRows();
    }

private:
    void MapColumns() {
        map_.reserve(static_cast<size_t>(Width(visible_)));
        for (int x = visible_.left; x < visible_.right; ++x) map_.push_back(static_cast<int>(columns_.At(x)));
    }

    // Puts a source row at pixel `toX` of `to`, in the target's format.
    void MakeRow(int64_t source, uint8_t* to, int toX) {
        const uint8_t* from = RowOf(job_.from, static_cast<int>(source));
        int fromX = static_cast<int>(columns_.At(visible_.left));
        if (!map_.empty()) {
            uint8_t* gathered = Scratch(gathered_, job_.from.format, Width(visible_));
            GatherRow(job_.from.format, from, map_, gathered);
            from = gathered;
            fromX = 0;
        }
        converter_.Convert(from, fromX, to, toX, Width(visible_));
    }

    // Rows that show the same source row as the one before are copied from it.
    void CopyRows() {
        // Within one raster a row must be read before it is written.
        const bool upwards = job_.from.topRow == job_.to.topRow && job_.fromRect.top < job_.toRect.top;
        const int count = visible_.bottom - visible_.top;
        int64_t lastSource = -1;
        const uint8_t* lastRow = nullptr;
        for (int i = 0; i < count; ++i) {
            const int y = upwards ? visible_.bottom - 1 - i : visible_.top + i;
            uint8_t* row = RowOf(job_.to, y);
            const int64_t source = rows_.At(y);
            if (source == lastSource)
                CopyRow(job_.to.format, lastRow, visible_.left, row, visible_.left, Width(visible_));
            else
                MakeRow(source, row, visible_.left);
            lastSource = source;
            lastRow = row;
        }
    }

    void CombineRows() {
        const int width = Width(visible_);
        const RowCombiner combiner(job_.to.format, job_.rop);
        std::vector<uint8_t> patternBuffer, sourceBuffer;
        Raster patternRow = job_.to;
        patternRow.topRow = Scratch(patternBuffer, job_.to.format, width);
        FillPixels(patternRow, {0, 0, width, 1}, job_.pattern);
        uint8_t* source = Scratch(sourceBuffer, job_.to.format, width);
        for (int y = visible_.top; y < visible_.bottom; ++y) {
            MakeRow(rows_.At(y), source, 0);
            combiner.Combine(patternRow.topRow, source, RowOf(job_.to, y), visible_.left, width);
        }
    }

    const BlitJob& job_;
    RowConverter& converter_;
    RECT visible_;
    const AxisMap columns_;
    const AxisMap rows_;
    std::vector<int>& map_ = stretchMemory.columns;
    std::vector<uint8_t>& gathered_ = stretchMemory.gathered;
};

// The target stands for the source, so that operations without a source walk the same road.
RECT RunWithoutSource(const BlitJob& job, const RECT* clips, int clipCount) {
    RECT changed = {};
    const RECT whole = Intersect(job.toRect, BoundsOf(job.to));
    for (int i = 0; i < clipCount; ++i) {
        const RECT visible = Intersect(clips[i], whole);
        if (IsEmpty(visible)) continue;
        changed = Hull(changed, visible);
        if (job.rop == kRopCopyPattern || !RopUsesDestination(job.rop)) {
            const uint64_t raw = Combine(job.rop, job.pattern, 0, 0);
            FillPixels(job.to, visible, static_cast<uint32_t>(raw));
            continue;
        }
        BlitJob onItself = job;
        onItself.from = job.to;
        onItself.toRect = onItself.fromRect = visible;
        onItself.mirrorX = onItself.mirrorY = false;
        RowConverter converter(onItself.from, onItself.to, {});
        ClippedBlit(onItself, converter, visible).Run();
    }
    return changed;
}

bool SharesMemory(const Raster& a, const Raster& b) {
    const auto range = [](const Raster& raster) {
        const uint8_t* first = std::min(raster.topRow, RowOf(raster, raster.height - 1));
        const uint8_t* last = std::max(raster.topRow, RowOf(raster, raster.height - 1));
        return std::pair(first, last + RowBytes(raster.format, raster.width));
    };
    const auto [aFirst, aLast] = range(a);
    const auto [bFirst, bLast] = range(b);
    return aFirst < bLast && bFirst < aLast;
}

// A move inside one raster needs no copy of the source, since rows and pixels can be walked in a safe order.
bool IsPlainMove(const BlitJob& job, const RowConverter& converter) {
    return job.rop == kRopCopySource && converter.Same() && !job.mirrorX && !job.mirrorY &&
           job.from.topRow == job.to.topRow && job.from.pitch == job.to.pitch &&
           int64_t{job.toRect.right} - job.toRect.left == int64_t{job.fromRect.right} - job.fromRect.left &&
           int64_t{job.toRect.bottom} - job.toRect.top == int64_t{job.fromRect.bottom} - job.fromRect.top;
}

RECT RunWithSource(const BlitJob& job, const RECT* clips, int clipCount) {
    RowConverter converter(job.from, job.to, job.monoKey);
    BlitJob safe = job;
    std::vector<uint8_t> copy;
    // With several clip rectangles a move could read what it wrote through an earlier one.
    if (SharesMemory(job.from, job.to) && (clipCount > 1 || !IsPlainMove(job, converter))) {
        const size_t rowBytes = static_cast<size_t>(RowBytes(job.from.format, job.from.width));
        copy.resize(rowBytes * static_cast<size_t>(job.from.height));
        for (int y = 0; y < job.from.height; ++y)
            std::memcpy(copy.data() + rowBytes * static_cast<size_t>(y), RowOf(job.from, y), rowBytes);
        safe.from.topRow = copy.data();
        safe.from.pitch = static_cast<int32_t>(rowBytes);
    }
    RECT changed = {};
    const RECT whole = Intersect(safe.toRect, BoundsOf(safe.to));
    for (int i = 0; i < clipCount; ++i) {
        const RECT visible = Intersect(clips[i], whole);
        if (IsEmpty(visible)) continue;
        ClippedBlit blit(safe, converter, visible);
        blit.Run();
        changed = Hull(changed, blit.Visible());
    }
    return changed;
}

template <typename Pixel>
void FillRow(uint8_t* row, int x, int count, Pixel pixel) {
    row += static_cast<ptrdiff_t>(x) * static_cast<ptrdiff_t>(sizeof(Pixel));
    for (int i = 0; i < count; ++i) std::memcpy(row + static_cast<size_t>(i) * sizeof(Pixel), &pixel, sizeof(Pixel));
}

}  // namespace

void FillPixels(const Raster& to, const RECT& rect, uint32_t raw) {
    const int count = Width(rect);
    for (int y = rect.top; y < rect.bottom; ++y) {
        uint8_t* row = RowOf(to, y);
        switch (BitsPerPixel(to.format)) {
            case 1:
                for (int x = rect.left; x < rect.right; ++x) PixelCodec<PixelFormat::kMono>::WriteRaw(row, x, raw);
                break;
            case 8:
                std::memset(row + rect.left, static_cast<int>(raw), static_cast<size_t>(count));
                break;
            case 16:
                FillRow(row, rect.left, count, static_cast<uint16_t>(raw));
                break;
            case 24:
                FillRow(row, rect.left, count,
                        Pixel24{{static_cast<uint8_t>(raw), static_cast<uint8_t>(raw >> 8),
                                 static_cast<uint8_t>(raw >> 16)}});
                break;
            case 32:
                FillRow(row, rect.left, count, raw);
                break;
            default:
                break;
        }
    }
}

RECT RunBlit(const BlitJob& job, const RECT* clips, int clipCount) {
    if (job.to.topRow == nullptr || IsEmpty(job.toRect)) return {};
    if (!RopUsesSource(job.rop)) return RunWithoutSource(job, clips, clipCount);
    if (job.from.topRow == nullptr || IsEmpty(job.fromRect)) return {};
    return RunWithSource(job, clips, clipCount);
}

}  // namespace tdkp
