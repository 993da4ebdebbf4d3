#include "platform/user/DroppedFiles.h"

#include <shellapi.h>

#include <map>

#include "platform/kernel/Counts.h"
#include "platform/kernel/Immortal.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

constexpr UINT kHowMany = 0xFFFFFFFFu;
constexpr uintptr_t kFirstHandle = 0x00080001;

struct Drops {
    LayerMutex mutex;
    // Guarded by it.
    std::map<HDROP, std::vector<std::string>> byHandle;
    uintptr_t nextHandle = kFirstHandle;
};

Drops& TheDrops() {
    return Immortal<Drops>();
}

HDROP AddDrop(std::vector<std::string> paths) {
    Drops& drops = TheDrops();
    const LayerGuard guard(drops.mutex);
    const auto handle = reinterpret_cast<HDROP>(drops.nextHandle++);
    drops.byHandle[handle] = std::move(paths);
    CountHandle(1);
    return handle;
}

// Who takes files at this place of the screen. Null if nobody does.
HWND TakerAt(HWND window, POINT point) {
    const DispatcherGuard guard(DispatcherLock());
    Window* state = FindWindowState(guard, window);
    if (state == nullptr) return nullptr;
    Window* root = RootOf(guard, *state);
    point.x -= root->bounds.left;
    point.y -= root->bounds.top;
    const Window* taker = FindWindowState(guard, WindowAt(guard, *root, &point));
    while (taker != nullptr && (taker->exStyle & WS_EX_ACCEPTFILES) == 0) taker = FindWindowState(guard, taker->parent);
    return taker != nullptr ? taker->handle : nullptr;
}

}  // namespace

bool AcceptsFiles(HWND window, POINT screen) {
    return TakerAt(window, screen) != nullptr;
}

bool DropFiles(HWND window, POINT screen, std::vector<std::string> paths) {
    const HWND taker = TakerAt(window, screen);
    if (taker == nullptr) return false;
    const HDROP handle = AddDrop(std::move(paths));
    if (PostMessageA(taker, WM_DROPFILES, reinterpret_cast<WPARAM>(handle), 0)) return true;
    DragFinish(handle);
    return false;
}

}  // namespace tdkp

using tdkp::LayerGuard;

TDKP_API VOID DragAcceptFiles(HWND window, BOOL accept) {
    const LONG style = GetWindowLongA(window, GWL_EXSTYLE);
    constexpr auto kAccepts = static_cast<LONG>(WS_EX_ACCEPTFILES);
    SetWindowLongA(window, GWL_EXSTYLE, accept ? style | kAccepts : style & ~kAccepts);
}

TDKP_API UINT DragQueryFileA(HDROP handle, UINT number, LPSTR path, UINT size) {
    tdkp::Drops& drops = tdkp::TheDrops();
    const LayerGuard guard(drops.mutex);
    const auto found = drops.byHandle.find(handle);
    if (found == drops.byHandle.end()) return 0;
    const std::vector<std::string>& paths = found->second;
    if (number == tdkp::kHowMany) return static_cast<UINT>(paths.size());
    if (number >= paths.size()) return 0;
    if (path == nullptr) return static_cast<UINT>(paths[number].size());
    if (size == 0) return 0;
    const size_t length = paths[number].copy(path, size - 1);
    path[length] = '\0';
    return static_cast<UINT>(length);
}

TDKP_API VOID DragFinish(HDROP handle) {
    tdkp::Drops& drops = tdkp::TheDrops();
    const LayerGuard guard(drops.mutex);
    if (drops.byHandle.erase(handle) != 0) tdkp::CountHandle(-1);
}
