// RowScaler: a picture in another size, row by row, interpolated between the four nearest pixels.
#pragma once

#include "companions/qzcolor/Image.h"
#include "companions/qzcolor/Scratch.h"

namespace qzcolor {

// Pixels lie on the middles of their cells, so the picture keeps its place, and a picture of one colour keeps that
// colour to the last bit. Rows are asked for from the top.
class RowScaler {
public:
    // RGB32 pixels, which must stay as they are.
    RowScaler(const Rows& words, int32_t width, int32_t height);
    // False when memory has run out.
    explicit operator bool() const { return scratch_.Bytes() != nullptr; }

    // Makes row `y` at `to`, `width` words.
    void MakeRow(int32_t y, uint8_t* to);
    // A row that the caller may use.
    uint8_t* SpareRow() const { return spare_; }

private:
    // A row of the source's width in the new one.
    void Widen(const uint8_t* row, uint8_t* to) const;
    // Source row `y` in the new width.
    const uint8_t* Widened(int32_t y);

    const Rows words_;
    const int32_t width_, height_;
    const Scratch scratch_;
    // For each pixel of a row: its left neighbour in the source, and how much of the right one it has, of 256.
    int32_t* places_ = nullptr;
    uint32_t* weights_ = nullptr;
    // The two rows that were widened last, and which they are.
    uint8_t *older_ = nullptr, *newer_ = nullptr, *spare_ = nullptr;
    int32_t olderY_ = -1, newerY_ = -1;
};

}  // namespace qzcolor
