#include "platform/user/WindowTable.h"

#include <algorithm>
#include <map>

#include "platform/kernel/Counts.h"
#include "platform/kernel/Immortal.h"

namespace tdkp {
namespace {

struct Table : std::map<HWND, std::unique_ptr<Window>> {};

Table& TheTable() {
    return Immortal<Table>();
}

void AppendTree(const DispatcherGuard& guard, HWND handle, std::vector<HWND>* list) {
    const Window* window = FindWindowState(guard, handle);
    if (window == nullptr) return;
    list->push_back(handle);
    for (auto child = window->children.rbegin(); child != window->children.rend(); ++child)
        AppendTree(guard, *child, list);
}

}  // namespace

Window* FindWindowState(const DispatcherGuard&, HWND window) {
    Table& table = TheTable();
    const auto found = table.find(window);
    return found == table.end() ? nullptr : found->second.get();
}

Window* InsertWindow(DispatcherGuard& guard, std::unique_ptr<Window> window) {
    Window* inserted = window.get();
    inserted->windowClass->windows++;
    if (Window* parent = FindWindowState(guard, inserted->parent)) parent->children.push_back(inserted->handle);
    TheTable()[inserted->handle] = std::move(window);
    CountWindow(1);
    return inserted;
}

void RemoveWindow(DispatcherGuard& guard, HWND handle) {
    Window* window = FindWindowState(guard, handle);
    if (window == nullptr) return;
    if (Window* parent = FindWindowState(guard, window->parent)) std::erase(parent->children, handle);
    window->windowClass->windows--;
    TheTable().erase(handle);
    CountWindow(-1);
    WakeWaiters(guard);
}

void ForEachWindow(const DispatcherGuard&, void (*visit)(void* context, Window& window), void* context) {
    for (auto& entry : TheTable()) visit(context, *entry.second);
}

Window* RootOf(const DispatcherGuard& guard, Window& window) {
    Window* root = &window;
    while (Window* parent = FindWindowState(guard, root->parent)) root = parent;
    return root;
}

POINT OffsetInRoot(const DispatcherGuard& guard, const Window& window) {
    POINT offset = {0, 0};
    const Window* walk = &window;
    while (const Window* parent = FindWindowState(guard, walk->parent)) {
        offset.x += walk->bounds.left + walk->edge;
        offset.y += walk->bounds.top + walk->edge;
        walk = parent;
    }
    return offset;
}

POINT PlaceOnDisplay(const DispatcherGuard& guard, const Window& window) {
    const Window* parent = FindWindowState(guard, window.parent);
    const LONG edge = parent != nullptr ? parent->edge : 0;
    return POINT{window.bounds.left + edge, window.bounds.top + edge};
}

std::vector<HWND> StackOf(const DispatcherGuard& guard, const Window& window) {
    std::vector<HWND> stack = window.children;
    std::stable_partition(stack.begin(), stack.end(),
                          [&](HWND child) { return !FindWindowState(guard, child)->Backdrop(); });
    return stack;
}

bool IsShown(const DispatcherGuard& guard, const Window& window) {
    const Window* walk = &window;
    while (walk != nullptr && (walk->style & WS_VISIBLE) != 0) walk = FindWindowState(guard, walk->parent);
    return walk == nullptr;
}

bool IsInside(const DispatcherGuard& guard, HWND parent, HWND window) {
    for (const Window* walk = FindWindowState(guard, window); walk != nullptr && walk->parent != nullptr;
         walk = FindWindowState(guard, walk->parent)) {
        if (walk->parent == parent) return true;
    }
    return false;
}

HWND WindowAt(const DispatcherGuard& guard, Window& window, POINT* point) {
    for (const HWND handle : StackOf(guard, window)) {
        Window* child = FindWindowState(guard, handle);
        if (child == nullptr || (child->style & WS_VISIBLE) == 0 || !PtInRect(&child->bounds, *point)) continue;
        point->x -= child->bounds.left + child->edge;
        point->y -= child->bounds.top + child->edge;
        return WindowAt(guard, *child, point);
    }
    return window.handle;
}

std::vector<HWND> TreeOf(const DispatcherGuard& guard, HWND window) {
    std::vector<HWND> list;
    AppendTree(guard, window, &list);
    return list;
}

bool AnyWindow(const DispatcherGuard&) {
    return !TheTable().empty();
}

}  // namespace tdkp
