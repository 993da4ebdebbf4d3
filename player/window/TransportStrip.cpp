#include "player/window/TransportStrip.h"

#include <cmath>
#include <utility>

#include "player/base/ClockText.h"

namespace tdkplay {
namespace {

constexpr char kClassName[] = "tdkplay strip";
constexpr double kPercent = 100.0;

void RegisterStripClass(WNDPROC procedure) {
    WNDCLASSA windowClass = {};
    windowClass.style = CS_HREDRAW | CS_VREDRAW;
    windowClass.lpfnWndProc = procedure;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
    windowClass.lpszClassName = kClassName;
    RegisterClassA(&windowClass);  // fails if it is registered already
}

POINT PointOf(LPARAM position) {
    return {static_cast<SHORT>(LOWORD(static_cast<DWORD_PTR>(position))),
            static_cast<SHORT>(HIWORD(static_cast<DWORD_PTR>(position)))};
}

}  // namespace

TransportStrip::TransportStrip(HWND parent, TransportEvents& events) : events_(events) {
    RegisterStripClass(Procedure);
    window_ = CreateWindowExA(0, kClassName, "", WS_CHILD | WS_CLIPSIBLINGS, 0, 0, 0, 0, parent, nullptr,
                              GetModuleHandleA(nullptr), nullptr);
    SetWindowLongPtrA(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    canvas_ = std::make_unique<Canvas>(1, kHeight);
}

TransportStrip::~TransportStrip() {
    SetWindowLongPtrA(window_, GWLP_USERDATA, 0);
    DestroyWindow(window_);
    if (face_.Picture) DeleteObject(face_.Picture);
}

void TransportStrip::Place(const RECT& place) {
    isShown_ = !IsRectEmpty(&place);
    const int width = place.right - place.left;
    if (isShown_ && width != canvas_->Width()) {
        canvas_ = std::make_unique<Canvas>(width, kHeight);
        Arrange();
    }
    SetWindowPos(window_, HWND_TOP, place.left, place.top, width, place.bottom - place.top, SWP_NOACTIVATE);
    ShowWindow(window_, isShown_ ? SW_SHOWNA : SW_HIDE);
}

// The time gets room for its widest text, so that nothing moves while it runs.
void TransportStrip::Arrange() {
    layout_ = StripLayout::For(canvas_->Width(), canvas_->TextWidth(TimeText(face_.State.Length)),
                               canvas_->TextWidth(face_.Label));
    face_.Seek.Place(layout_.Seek);
    face_.Volume.Place(layout_.VolumeSlider());
    Redraw();
}

std::string TransportStrip::TimeText(double position) const {
    const double length = face_.State.Length;
    return length > 0.0 ? ClockText(position) + " / " + ClockText(length) : ClockText(position);
}

void TransportStrip::SetState(const StripState& state) {
    const StripState former = std::exchange(face_.State, state);
    if (state.Title != former.Title) face_.Notice.clear();
    if (state.Length != former.Length) {
        if (face_.Seek.IsDragged()) ReleaseCapture();  // it was for another piece
        Arrange();
    }
    const bool hasMoved = face_.Seek.SetValue(state.Length > 0.0 ? state.Position / state.Length : 0.0);
    const bool isLouder = face_.Volume.SetValue(state.Volume / kPercent);
    const std::string time = face_.Seek.IsDragged() ? face_.Time : TimeText(state.Position);
    if (hasMoved || isLouder || time != face_.Time || state.Title != former.Title || state.Detail != former.Detail ||
        state.IsPlaying != former.IsPlaying || state.Volume != former.Volume)
        Redraw();
    face_.Time = time;
}

void TransportStrip::SetPicture(HBITMAP picture) {
    if (face_.Picture) DeleteObject(face_.Picture);
    face_.Picture = picture;
    Redraw();
}

void TransportStrip::SetLabel(const std::string& label) {
    face_.Label = label;
    Arrange();
}

void TransportStrip::SetChecked(bool checked) {
    face_.IsChecked = checked;
    Redraw();
}

void TransportStrip::SetNotice(const std::string& notice) {
    face_.Notice = notice;
    Redraw();
}

void TransportStrip::OnPaint() {
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(window_, &paint);
    face_.Paint(*canvas_, layout_);
    canvas_->CopyTo(dc);
    EndPaint(window_, &paint);
}

void TransportStrip::OnMove(POINT point) {
    events_.OnPointerInStrip();
    const StripPart part = layout_.PartAt(point);
    if (face_.Held == StripPart::kSeek || face_.Held == StripPart::kVolume) return FollowDrag(point.x);
    if (std::exchange(face_.Hot, part) == part) return;
    AskForLeave();
    Redraw();
}

void TransportStrip::AskForLeave() const {
    TRACKMOUSEEVENT request = {};
    request.cbSize = sizeof(request);
    request.dwFlags = TME_LEAVE;
    request.hwndTrack = window_;
    TrackMouseEvent(&request);
}

void TransportStrip::OnPress(POINT point) {
    face_.Held = face_.Hot = layout_.PartAt(point);
    if (face_.Held == StripPart::kNone) return;
    if (face_.Held == StripPart::kSeek && face_.State.Length <= 0.0) return LetGo();
    SetCapture(window_);
    if (face_.Held == StripPart::kSeek || face_.Held == StripPart::kVolume) FollowDrag(point.x);
    Redraw();
}

void TransportStrip::FollowDrag(int x) {
    Slider& slider = face_.Held == StripPart::kSeek ? face_.Seek : face_.Volume;
    slider.Drag(x);
    if (face_.Held == StripPart::kSeek)
        face_.Time = TimeText(slider.Value() * face_.State.Length);
    else
        events_.OnVolumeBar(static_cast<int>(std::lround(slider.Value() * kPercent)));
    Redraw();
}

void TransportStrip::OnRelease(POINT point) {
    const StripPart held = face_.Held;
    if (held == StripPart::kNone) return;
    face_.Hot = layout_.PartAt(point);
    const bool isClick = face_.Hot == held || held == StripPart::kSeek;
    ReleaseCapture();
    LetGo();
    if (isClick) Click(held);
}

void TransportStrip::LetGo() {
    face_.Held = StripPart::kNone;
    face_.Seek.EndDrag();
    face_.Volume.EndDrag();
    Redraw();
}

void TransportStrip::Click(StripPart part) {
    if (part == StripPart::kSettings && tool_) return tool_->OnToolButton();
    if (part == StripPart::kPlay) events_.OnPlayButton();
    if (part == StripPart::kPrevious || part == StripPart::kNext)
        events_.OnStepButton(part == StripPart::kNext ? 1 : -1);
    if (part == StripPart::kSeek) events_.OnSeekBar(face_.Seek.Value() * face_.State.Length);
}

void TransportStrip::OnLeave() {
    face_.Hot = StripPart::kNone;
    Redraw();
}

LRESULT CALLBACK TransportStrip::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<TransportStrip*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (!self) return DefWindowProcA(window, message, wParam, lParam);
    switch (message) {
        case WM_PAINT:
            return self->OnPaint(), 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_LBUTTONDOWN:
            return self->OnPress(PointOf(lParam)), 0;
        case WM_MOUSEMOVE:
            return self->OnMove(PointOf(lParam)), 0;
        case WM_LBUTTONUP:
            return self->OnRelease(PointOf(lParam)), 0;
        case WM_MOUSELEAVE:
            return self->OnLeave(), 0;
        case WM_CAPTURECHANGED:
            return self->LetGo(), 0;
        case kPictureWaits:
            if (self->tool_) self->tool_->OnPictureWaits();
            return 0;
        default:
            return DefWindowProcA(window, message, wParam, lParam);
    }
}

}  // namespace tdkplay
