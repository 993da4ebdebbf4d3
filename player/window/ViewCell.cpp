#include "player/window/ViewCell.h"

namespace tdkplay {
namespace {

constexpr char kClassName[] = "tdkplay cell";

PictureSize SizeOf(const RECT& place) {
    return {place.right - place.left, place.bottom - place.top};
}

HWND MakeCellWindow(HWND parent, const RECT& place) {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = DefWindowProcA;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    windowClass.lpszClassName = kClassName;
    RegisterClassA(&windowClass);  // fails if it is registered already
    const PictureSize size = SizeOf(place);
    return CreateWindowExA(0, kClassName, "", WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, place.left,
                           place.top, size.Width, size.Height, parent, nullptr, GetModuleHandleA(nullptr), nullptr);
}

}  // namespace

ViewCell::ViewCell(IMPAVizMgr& manager, HWND parent, const RECT& place, bool shares,
                   const std::vector<PluginInfo>& plugins, size_t index)
    : window_(shares ? MakeCellWindow(parent, place) : nullptr),
      view_(std::make_unique<View>(manager, window_ ? window_.get() : parent, SizeOf(place), plugins, index)),
      own_(view_->Plugin().Path) {}

void ViewCell::Place(const RECT& place) {
    const PictureSize size = SizeOf(place);
    if (window_) MoveWindow(window_.get(), place.left, place.top, size.Width, size.Height, TRUE);
    view_->Resize(size);
}

void ViewCell::Show(const RECT& place) {
    Place(place);
    view_->Show(SizeOf(place));
}

void ViewCell::Step(int direction) {
    view_->StepPlugin(direction);
    own_ = view_->Plugin().Path;
}

void ViewCell::Choose(const std::string& path) {
    if (view_->Select(path)) own_ = path;
}

bool ViewCell::StandIn(const PluginInfo& plugin) {
    if (!view_->Select(plugin.Path)) return false;
    standIn_ = plugin.Path;
    return true;
}

}  // namespace tdkplay
