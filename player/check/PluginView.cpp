#include "player/check/PluginView.h"

#include <tdkplatform.h>

#include <algorithm>
#include <cstring>

#include "player/check/Findings.h"

namespace tdkplay::check {
namespace {

// The next frame's share of a channel is seven eighths.
constexpr uint32_t kFadeShift = 3;
constexpr uint32_t kFadeMask = 0x1F1F1F;
constexpr uint32_t kColours = 0xFFFFFF;

}  // namespace

PluginView::PluginView(CheckedPlugin& plugin, PictureSize size)
    : plugin_(plugin), size_(size), record_("the analysis frame", sizeof(VizAnalysisFrame), Against::kEnd) {
    if (!plugin.DrawsToWindow()) {
        Resize(size);
        return;
    }
    window_ = CreateWindowExA(0, "Static", "", WS_POPUP | WS_VISIBLE, 0, 0, size.Width, size.Height, nullptr, nullptr,
                              nullptr, nullptr);
    if (!window_) throw ContractFault("there is no window of size " + size.Text());
    plugin_.SetWindow(window_);
    TdkpDispatchMessages();  // it is painted for the first time
}

PluginView::~PluginView() {
    if (!window_) return;
    try {
        plugin_.SetWindow(nullptr);
    } catch (const ContractFault&) {
        // Told by the probe that withdraws it.
    }
    DestroyWindow(window_);
    TdkpDispatchMessages();
}

void PluginView::Resize(PictureSize size) {
    size_ = size;
    if (window_) {
        SetWindowPos(window_, nullptr, 0, 0, size.Width, size.Height, SWP_NOZORDER | SWP_NOACTIVATE);
        TdkpDispatchMessages();
        return;
    }
    const size_t bytes = sizeof(uint32_t) * static_cast<size_t>(size.Width) * static_cast<size_t>(size.Height);
    picture_.reset();
    picture_ = std::make_unique<GuardedBuffer>("the picture", bytes, Against::kEnd);
}

void PluginView::Next(const VizAnalysisFrame& frame) {
    if (picture_ && (plugin_.Says().EffectMask & kEffectFade) != 0) Fade();
    Draw(frame);
}

void PluginView::Fade() {
    auto* const pixels = reinterpret_cast<uint32_t*>(picture_->Data());
    for (size_t i = 0; i < picture_->Size() / sizeof(uint32_t); ++i)
        pixels[i] = (pixels[i] & kColours) - ((pixels[i] >> kFadeShift) & kFadeMask);
}

void PluginView::Draw(const VizAnalysisFrame& frame) {
    std::memcpy(record_.Data(), &frame, sizeof frame);
    DrawFrom(record_);
}

void PluginView::DrawReadOnly(const VizAnalysisFrame& frame, Against against) {
    GuardedBuffer record("the analysis frame", sizeof frame, against);
    std::memcpy(record.Data(), &frame, sizeof frame);
    record.MakeReadOnly();
    DrawFrom(record);
    RequireUntouched(record);
}

void PluginView::DrawFrom(const GuardedBuffer& record) {
    auto* const frame = reinterpret_cast<VizAnalysisFrame*>(record.Data());
    if (window_) {
        plugin_.DrawToWindow(window_, frame);
        TdkpDispatchMessages();
    } else {
        plugin_.Draw(picture_->Data(), size_.Width, size_.Height, -4 * size_.Width, frame);
    }
}

void PluginView::RequireUntouched() {
    RequireUntouched(record_);
    if (picture_) RequireUntouched(*picture_);
}

void PluginView::RequireUntouched(GuardedBuffer& buffer) const {
    const std::string touched = buffer.TakeTouched();
    if (!touched.empty()) throw ContractFault(touched + ", in " + (window_ ? "DrawToWindow " : "Draw ") + size_.Text());
}

const std::vector<uint32_t>& PluginView::Pixels() {
    const auto width = static_cast<size_t>(size_.Width);
    const auto height = static_cast<size_t>(size_.Height);
    pixels_.resize(width * height);
    if (window_) {
        int seenWidth = 0, seenHeight = 0;
        static_assert(sizeof(DWORD) == sizeof(uint32_t));
        TdkpReadWindow(window_, reinterpret_cast<DWORD*>(pixels_.data()), static_cast<int>(pixels_.size()), &seenWidth,
                       &seenHeight);
        return pixels_;
    }
    const auto* const lowest = reinterpret_cast<const uint32_t*>(picture_->Data());
    for (size_t y = 0; y < height; ++y)
        std::transform(lowest + y * width, lowest + (y + 1) * width, pixels_.data() + (height - 1 - y) * width,
                       [](uint32_t pixel) { return pixel & kColours; });
    return pixels_;
}

}  // namespace tdkplay::check
