// The frames of an output window: buffers, surface, and the way to the screen.
#include <cstring>
#include <utility>

#include "src/render/VizWindow.h"

namespace tdkviz {

void CVizWindow::BuildSurfaces(int32_t width, int32_t height) {
    const MutexLock lock(&SizeLock);
    if (width < 1 || height < 1 || (Surface && width == DisplayWidth && height == DisplayHeight)) return;
    Rebuilding = true;
    FreeSurfaces();
    StoreFrameSize(width, height);
    ChooseFormats();
    MakeFrameBuffers();
    MakeSurface();
    Rebuilding = false;
}

void CVizWindow::StoreFrameSize(int32_t width, int32_t height) {
    const bool halved = int64_t{width} * height > kMaxFullSizePixels;
    DisplayWidth = width;
    DisplayHeight = height;
    FrameWidth = halved ? width / 2 : width;
    FrameHeight = halved ? height / 2 : height;
}

void CVizWindow::ChooseFormats() {
    FrameFormat = FormatRGB32;
    DisplayFormat = GetDisplayFormat();
    if (DisplayFormat == FormatNone) DisplayFormat = FrameFormat;
    if (DisplayFormat != FrameFormat || !FrameFillsDisplay()) NeedsConversion = true;
    if (NeedsConversion) ChooseConverter();
}

void CVizWindow::ChooseConverter() {
    ConvertFrame = Converter ? Converter->FindConverter(FrameFormat, DisplayFormat) : nullptr;
    if (ConvertFrame) return;
    NeedsConversion = false;
    DisplayFormat = FrameFormat;
}

void CVizWindow::MakeFrameBuffers() {
    if (FillBitmapInfo(&FrameInfo, sizeof(FrameInfo), FrameFormat, FrameWidth, FrameHeight, nullptr, 0) == 0) return;
    const size_t bytes = FrameInfo.Header.biSizeImage;
    RawBuffer0.Allocate(bytes);
    RawBuffer1.Allocate(bytes);
    FrontPixels = RawBuffer0.Pixels();
    BackPixels = RawBuffer1.Pixels();
    FramePitch = RowPitch(&FrameInfo);
}

void CVizWindow::MakeSurface() {
    if (FillBitmapInfo(&DisplayInfo, sizeof(DisplayInfo), DisplayFormat, DisplayWidth, DisplayHeight, nullptr, 0) ==
        0) {
        return;
    }
    Surface.reset(CreateVizSurface(&DisplayInfo));
    if (!Surface) return;
    DisplayPitch = RowPitch(&DisplayInfo);
    std::memset(Surface->Pixels, 0, DisplayInfo.Header.biSizeImage);
    if (!NeedsConversion && FrameFillsDisplay()) FramePitch = DisplayPitch;
}

void CVizWindow::FreeFrameBuffers() {
    const MutexLock lock(&SizeLock);
    FrontPixels = nullptr;
    BackPixels = nullptr;
    RawBuffer0.Free();
    RawBuffer1.Free();
}

void CVizWindow::FreeSurfaces() {
    const MutexLock lock(&SizeLock);
    Surface.reset();
    FreeFrameBuffers();
    wipePending_ = false;
}

bool CVizWindow::FrameFillsDisplay() const {
    return FrameWidth == DisplayWidth && FrameHeight == DisplayHeight;
}

int32_t CVizWindow::GetFrameStride() const {
    const int32_t pitch = FramePitch;
    return (pitch < 0 ? -pitch : pitch) / static_cast<int32_t>(sizeof(uint32_t));
}

void CVizWindow::SpreadRows(void* frame) const {
    const ptrdiff_t width = FrameWidth, stride = GetFrameStride();
    if (stride == width) return;
    auto* pixels = static_cast<uint32_t*>(frame);
    // The last row first: none is written over before it has moved.
    for (ptrdiff_t row = FrameHeight - 1; row > 0; --row) {
        std::memmove(pixels + row * stride, pixels + row * width, static_cast<size_t>(width) * sizeof(uint32_t));
    }
}

void* CVizWindow::GetFrontPixels() {
    const MutexLock lock(&SizeLock);
    if (Rebuilding || !FrontPixels) return nullptr;
    frontInUse_ = true;
    return FrontPixels;
}

void* CVizWindow::GetBackPixels() {
    const MutexLock lock(&SizeLock);
    if (Rebuilding || !BackPixels) return nullptr;
    backInUse_ = true;
    return BackPixels;
}

void CVizWindow::ReleaseFront() {
    const MutexLock lock(&SizeLock);
    frontInUse_ = false;
}

void CVizWindow::ReleaseBack() {
    const MutexLock lock(&SizeLock);
    backInUse_ = false;
}

void CVizWindow::SwapBuffers() {
    const MutexLock lock(&SizeLock);
    std::swap(FrontPixels, BackPixels);
}

void CVizWindow::Present(bool newFrame) {
    {
        const MutexLock lock(&SizeLock);
        if (!Rebuilding && Surface && DrawsFrames) {
            if (newFrame) TakeFrame();
            const RECT window = {0, 0, DisplayWidth, DisplayHeight};
            if (WindowDC && MemoryDC) BlitVizSurface(WindowDC, MemoryDC, Surface.get(), PictureInSurface(), window);
        }
    }
    if (newFrame) ServeDeferred();
}

void CVizWindow::TakeFrame() {
    GdiFlush();  // the last blit may not have read the surface yet
    if (std::exchange(wipePending_, false)) {
        WipeSurface();
        WipeFrames();
    } else if (NeedsConversion && ConvertFrame && FrontPixels) {
        ConvertFrame(Surface->Pixels, DisplayWidth, DisplayHeight, DisplayPitch, 0, 0, DisplayWidth, DisplayHeight,
                     FrontPixels, FrameWidth, FrameHeight, FramePitch, 0, 0, FrameWidth, FrameHeight);
    } else if (!NeedsConversion && FrontPixels) {
        CopyFrameToSurface();
    }
}

// The whole surface if the frame has its size, else its first rows and columns.
void CVizWindow::CopyFrameToSurface() {
    auto* to = static_cast<uint8_t*>(Surface->Pixels);
    if (FrameFillsDisplay()) {
        std::memcpy(to, FrontPixels, FrameInfo.Header.biSizeImage);
        return;
    }
    const uint8_t* from = FrontPixels;
    const ptrdiff_t fromPitch = -ptrdiff_t{FramePitch}, toPitch = -ptrdiff_t{DisplayPitch};
    for (int32_t rows = FrameHeight; rows > 0; --rows, from += fromPitch, to += toPitch) {
        std::memcpy(to, from, static_cast<size_t>(fromPitch));
    }
}

// Where the picture lies in the surface, from its top. Rows are bottom-up, so the first ones in memory are
// the lowest.
RECT CVizWindow::PictureInSurface() const {
    if (NeedsConversion) return {0, 0, DisplayWidth, DisplayHeight};
    return {0, DisplayHeight - FrameHeight, FrameWidth, DisplayHeight};
}

void CVizWindow::WipeSurface() {
    std::memset(Surface->Pixels, 0, DisplayInfo.Header.biSizeImage);
}

void CVizWindow::WipeFrames() {
    if (FrontPixels) std::memset(FrontPixels, 0, FrameInfo.Header.biSizeImage);
    if (BackPixels) std::memset(BackPixels, 0, FrameInfo.Header.biSizeImage);
}

// A plug-in that serves messages inside of Draw must keep its pixels: what would take them away waits for
// the frame's end.
bool CVizWindow::DeferDuringFrame(UINT message, WPARAM wParam, LPARAM lParam) {
    const MutexLock lock(&SizeLock);
    if (!inFrame_ && !frontInUse_ && !backInUse_) return false;
    deferred_.push_back({message, wParam, lParam});
    return true;
}

void CVizWindow::ResizeAfterFrame(int32_t width, int32_t height) {
    {
        const MutexLock lock(&SizeLock);
        if (inFrame_ || frontInUse_ || backInUse_) {
            const WPARAM size = MAKEWPARAM(static_cast<WORD>(width), static_cast<WORD>(height));
            deferred_.insert(deferred_.begin(), {kMessageResize, size, 0});
            return;
        }
    }
    Resize(width, height);
}

void CVizWindow::BeginFrame() {
    const MutexLock lock(&SizeLock);
    inFrame_ = true;
}

void CVizWindow::EndFrame() {
    {
        const MutexLock lock(&SizeLock);
        inFrame_ = false;
    }
    ServeDeferred();
}

// Straight to the window procedure: what was posted meanwhile comes later.
void CVizWindow::ServeDeferred() {
    std::vector<Deferred> waiting;
    {
        const MutexLock lock(&SizeLock);
        frontInUse_ = backInUse_ = false;
        if (!inFrame_) waiting.swap(deferred_);
    }
    for (const Deferred& next : waiting) {
        if (const HWND window = Window) {
            SendMessageA(window, next.message, next.wParam, next.lParam);
        } else if (next.message == kMessageUnload) {
            OnUnload(reinterpret_cast<CVizPlugin*>(next.wParam));
        } else if (next.message == WM_NCDESTROY) {
            Destroy();
        }
    }
}

}  // namespace tdkviz
