#include "player/window/DroppedFiles.h"

namespace tdkplay {
namespace {

constexpr UINT kCountThem = 0xFFFFFFFF;

}  // namespace

std::vector<std::string> TakeDroppedFiles(HDROP drop) {
    std::vector<std::string> paths;
    const UINT count = DragQueryFileA(drop, kCountThem, nullptr, 0);
    for (UINT i = 0; i < count; ++i) {
        std::string path(DragQueryFileA(drop, i, nullptr, 0) + 1, '\0');
        path.resize(DragQueryFileA(drop, i, path.data(), static_cast<UINT>(path.size())));
        paths.push_back(std::move(path));
    }
    DragFinish(drop);
    return paths;
}

}  // namespace tdkplay
