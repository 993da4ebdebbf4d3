// The layer's own switches that concern windows and messages; see tdkplatform.h.
#include <windows.h>

#include <tdkplatform.h>

#include <algorithm>

#include "platform/gdi/PixelCodec.h"
#include "platform/gdi/RowConvert.h"
#include "platform/user/DialogWindow.h"
#include "platform/user/DroppedFiles.h"
#include "platform/user/Input.h"
#include "platform/user/Picture.h"
#include "platform/user/SentCalls.h"
#include "platform/user/Sink.h"
#include "platform/user/WindowTable.h"

namespace tdkp {
namespace {

// A handler that keeps giving its thread work doesn't keep the host's loop in here.
constexpr uint32_t kMostServed = 1000;

// What a picture has above its colours means nothing.
void ClearUpperBytes(DWORD* pixels, int32_t count) {
    constexpr int32_t kBlock = 16;  // a fixed number is what compilers make vectors of
    for (; count >= kBlock; count -= kBlock, pixels += kBlock)
        for (int32_t i = 0; i < kBlock; ++i) pixels[i] &= kColorMask;
    for (int32_t i = 0; i < count; ++i) pixels[i] &= kColorMask;
}

struct Layer {
    HWND window;
    POINT origin;  // of its picture, in the client area that is read
    RECT seen;     // in the same coordinates
};

// The window and what is shown inside it, from the bottom up.
void AppendLayers(const DispatcherGuard& guard, const Window& window, Layer layer, std::vector<Layer>* layers) {
    layers->push_back(layer);
    const std::vector<HWND> stack = StackOf(guard, window);
    for (auto handle = stack.rbegin(); handle != stack.rend(); ++handle) {
        const Window* child = FindWindowState(guard, *handle);
        if (child == nullptr || (child->style & WS_VISIBLE) == 0) continue;
        RECT place = child->bounds;
        OffsetRect(&place, layer.origin.x + window.edge, layer.origin.y + window.edge);
        Layer inner = {*handle, {place.left, place.top}, {0, 0, 0, 0}};
        if (IntersectRect(&inner.seen, &place, &layer.seen)) AppendLayers(guard, *child, inner, layers);
    }
}

void CopyLayer(const Layer& layer, uint32_t thread, DWORD* pixels, int32_t width) {
    DispatcherGuard guard(DispatcherLock());
    Window* window = HoldPicture(guard, layer.window, thread);
    if (window == nullptr) return;
    const Raster raster = window->picture.raster;
    guard.unlock();
    Raster colors;
    colors.format = PixelFormat::kRgb32;
    RowConverter converter(raster, colors, {});
    for (LONG y = layer.seen.top; y < layer.seen.bottom; ++y) {
        const LONG sourceY = y - layer.origin.y;
        const uint8_t* row = raster.topRow != nullptr && sourceY < raster.height
                                 ? raster.topRow + static_cast<ptrdiff_t>(sourceY) * raster.pitch
                                 : nullptr;
        DWORD* to = pixels + static_cast<ptrdiff_t>(y) * width;
        const LONG from = layer.seen.left - layer.origin.x;
        const LONG end =
            row != nullptr ? std::clamp<LONG>(raster.width - from, 0, layer.seen.right - layer.seen.left) : 0;
        if (end > 0) converter.Convert(row, from, reinterpret_cast<uint8_t*>(to), layer.seen.left, end);
        std::fill(to + layer.seen.left + end, to + layer.seen.right, 0);
        ClearUpperBytes(to + layer.seen.left, end);
    }
    guard.lock();
    LetGoPicture(guard, *window);
}

}  // namespace
}  // namespace tdkp

using tdkp::DispatcherGuard;
using tdkp::DispatcherLock;

TDKP_API BOOL TdkpReadWindow(HWND window, DWORD* pixels, int capacity, int* width, int* height) {
    const uint32_t thread = tdkp::CurrentThreadId();
    std::vector<tdkp::Layer> layers;
    RECT client;
    {
        DispatcherGuard guard(DispatcherLock());
        const tdkp::Window* state = tdkp::FindWindowState(guard, window);
        if (state == nullptr) return FALSE;
        client = state->Client();
        tdkp::AppendLayers(guard, *state, tdkp::Layer{window, {-state->edge, -state->edge}, client}, &layers);
    }
    if (width != nullptr) *width = client.right;
    if (height != nullptr) *height = client.bottom;
    if (pixels == nullptr || int64_t{client.right} * client.bottom > capacity) return FALSE;
    for (const tdkp::Layer& layer : layers) tdkp::CopyLayer(layer, thread, pixels, client.right);
    return TRUE;
}

TDKP_API void TdkpFeedMouse(HWND window, UINT message, WPARAM keys, int x, int y) {
    POINT point = {x, y};
    {
        DispatcherGuard guard(DispatcherLock());
        tdkp::Window* state = tdkp::FindWindowState(guard, window);
        if (state == nullptr) return;
        window = tdkp::WindowAt(guard, *state, &point);
    }
    tdkp::QueueMouse(window, message, keys, point, nullptr, GetTickCount());
}

TDKP_API void TdkpFeedKey(HWND window, BOOL down, UINT virtualKey, UINT character) {
    const bool alt = (GetKeyState(VK_MENU) & 0x8000) != 0;
    tdkp::TheSink().OnKey(tdkp::IdOf(window), down != FALSE, virtualKey, character, alt, GetTickCount());
}

TDKP_API void TdkpFeedClose(HWND window) {
    tdkp::TheSink().OnCloseRequest(tdkp::IdOf(window));
}

TDKP_API BOOL TdkpFeedFiles(HWND window, int x, int y, const char* const* paths, int count) {
    POINT place = {x, y};
    return ClientToScreen(window, &place) && tdkp::DropFiles(window, place, {paths, paths + count});
}

TDKP_API uint32_t TdkpDispatchMessages() {
    uint32_t served = 0;
    MSG message;
    while (served < tdkp::kMostServed && PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        ++served;
        if (message.message == WM_QUIT) {
            // Meant for a loop that runs until then; the host's own goes on.
            continue;
        }
        const HWND dialog = tdkp::DialogOf(message.hwnd);
        if (dialog != nullptr && IsDialogMessageA(dialog, &message)) continue;
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    return served;
}

TDKP_API int TdkpMessageFd() {
    const uint32_t thread = tdkp::CurrentThreadId();
    DispatcherGuard guard(DispatcherLock());
    tdkp::MessageQueue& queue = tdkp::QueueOf(guard, thread);
    const int descriptor = queue.fd.Descriptor();
    queue.lastLook = GetTickCount();
    tdkp::SyncMessageFd(guard, queue);
    return descriptor;
}
