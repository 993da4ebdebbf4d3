#include "companions/qzcolor/RowScaler.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include <libyuv.h>

#include "companions/qzcolor/RowTable.h"

namespace qzcolor {

namespace {

constexpr int32_t kOne = 256;  // of a weight
constexpr uint32_t kBothHalves = 0x10001;
constexpr int32_t kArrays = 5;

// Where the middle of cell `index` of `to` lies among the middles of `from` cells, in 1/256.
int32_t Place(int32_t index, int32_t from, int32_t to) {
    const int64_t place = ((2 * int64_t{index} + 1) * from * kOne / to - kOne) / 2;
    return static_cast<int32_t>(std::clamp(place, int64_t{0}, int64_t{from - 1} * kOne));
}

// Of each array: there is room for a row of either width.
size_t ArrayBytes(const Rows& words, int32_t width) {
    return sizeof(uint32_t) * size_t(std::max(width, words.width));
}

void MixRows(const uint8_t* upper, const uint8_t* lower, int32_t weight, uint8_t* to, int32_t width) {
    const int bytes = width * static_cast<int>(sizeof(uint32_t));
    libyuv::InterpolatePlane(upper, bytes, lower, bytes, to, bytes, bytes, 1, weight);
}

}  // namespace

RowScaler::RowScaler(const Rows& words, int32_t width, int32_t height)
    : words_(words), width_(width), height_(height), scratch_(kArrays * ArrayBytes(words, width)) {
    uint8_t* next = scratch_.Bytes();
    if (!next) return;
    const auto take = [&] { return std::exchange(next, next + ArrayBytes(words_, width_)); };
    places_ = reinterpret_cast<int32_t*>(take());
    weights_ = reinterpret_cast<uint32_t*>(take());
    older_ = take();
    newer_ = take();
    spare_ = take();
    for (int32_t x = 0; x < width_; ++x) {
        const int32_t place = Place(x, words_.width, width_);
        // The last pixel is the right neighbour of the one before it.
        places_[x] = std::clamp(place / kOne, 0, std::max(words_.width - 2, 0));
        weights_[x] = static_cast<uint32_t>(place - places_[x] * kOne) * kBothHalves;
    }
}

void RowScaler::Widen(const uint8_t* row, uint8_t* to) const {
    uint32_t single[2];
    if (words_.width == 1) {
        std::memcpy(&single[0], row, sizeof(uint32_t));
        single[1] = single[0];
        row = reinterpret_cast<const uint8_t*>(single);
    }
    BestRowTable().Mix(row, places_, weights_, to, width_);
}

const uint8_t* RowScaler::Widened(int32_t y) {
    if (y == newerY_) return newer_;
    if (y == olderY_) return older_;
    std::swap(older_, newer_);
    olderY_ = std::exchange(newerY_, y);
    Widen(words_.At(y), newer_);
    return newer_;
}

void RowScaler::MakeRow(int32_t y, uint8_t* to) {
    const int32_t place = Place(y, words_.height, height_), upper = place / kOne, weight = place % kOne;
    if (height_ < words_.height) {
        // Rows are seldom wanted twice, so what is mixed from two is widened once.
        if (weight != 0) MixRows(words_.At(upper), words_.At(upper + 1), weight, older_, words_.width);
        Widen(weight != 0 ? older_ : words_.At(upper), to);
    } else if (weight == 0) {
        std::memcpy(to, Widened(upper), sizeof(uint32_t) * size_t(width_));
    } else {
        const uint8_t* widened = Widened(upper);
        MixRows(widened, Widened(upper + 1), weight, to, width_);
    }
}

}  // namespace qzcolor
