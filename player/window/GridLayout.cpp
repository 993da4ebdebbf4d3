#include "player/window/GridLayout.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace tdkplay {
namespace {

constexpr int kGap = 2;  // pixels between cells

struct Grid {
    int Columns;
    int Rows;
};

// One of `count` equal parts of `length`, with gaps between them.
int PartOf(int length, int count) {
    return std::max((length - (count - 1) * kGap) / count, 1);
}

// How large a picture of the usual shape is that fits a cell, in units that don't matter, and the cell itself.
std::pair<int64_t, int64_t> MeritOf(PictureSize room, Grid grid) {
    const PictureSize usual;
    const int64_t width = PartOf(room.Width, grid.Columns);
    const int64_t height = PartOf(room.Height, grid.Rows);
    return {std::min(width * usual.Height, height * usual.Width), width * height};
}

Grid ChooseGrid(PictureSize room, int cells) {
    Grid best = {cells, 1};
    for (int columns = cells - 1; columns > 0; --columns) {
        const Grid grid = {columns, (cells + columns - 1) / columns};
        if (MeritOf(room, grid) > MeritOf(room, best)) best = grid;
    }
    return best;
}

}  // namespace

std::vector<RECT> LayOutGrid(PictureSize room, size_t cells) {
    const auto count = static_cast<int>(cells);
    const Grid grid = ChooseGrid(room, count);
    const int width = PartOf(room.Width, grid.Columns);
    const int height = PartOf(room.Height, grid.Rows);
    std::vector<RECT> places;
    // What the division leaves over goes to both sides.
    int top = (room.Height - grid.Rows * (height + kGap) + kGap) / 2;
    for (int row = 0; row < grid.Rows; ++row, top += height + kGap) {
        const int inRow = std::min(grid.Columns, count - row * grid.Columns);
        int left = (room.Width - inRow * (width + kGap) + kGap) / 2;
        for (int i = 0; i < inRow; ++i, left += width + kGap) places.push_back({left, top, left + width, top + height});
    }
    return places;
}

}  // namespace tdkplay
