// A view of the plug-in as it meets it: a picture that fades from frame to frame, or a window. All operations on the
// frame thread.
#pragma once

#include <tdkviz/plugin.h>
#include <windows.h>

#include <memory>
#include <vector>

#include "player/base/PictureSize.h"
#include "player/check/CheckedPlugin.h"
#include "player/check/GuardedBuffer.h"

namespace tdkplay::check {

class PluginView {
public:
    PluginView(CheckedPlugin& plugin, PictureSize size);
    // Withdraws the window.
    ~PluginView();
    PluginView(const PluginView&) = delete;
    PluginView& operator=(const PluginView&) = delete;

    // The next frame: what the effects leave of the last picture, then Draw.
    void Next(const VizAnalysisFrame& frame);
    // The plug-in's part of it.
    void Draw(const VizAnalysisFrame& frame);
    // Throws ContractFault if anything beside the picture has been touched since the last call.
    void RequireUntouched();
    // Draws from a frame that can't be written to and lies against a zone that can't be touched. Throws
    // ContractFault if it is.
    void DrawReadOnly(const VizAnalysisFrame& frame, Against against);
    // The picture goes, and a black one of this size comes; or the window changes its size.
    void Resize(PictureSize size);
    // What is seen, 0x00RRGGBB, top row first. Good until the next call.
    const std::vector<uint32_t>& Pixels();
    // Null if the plug-in draws to a buffer.
    HWND Window() const { return window_; }

private:
    void Fade();
    void DrawFrom(const GuardedBuffer& record);
    void RequireUntouched(GuardedBuffer& buffer) const;

    CheckedPlugin& plugin_;
    PictureSize size_;
    GuardedBuffer record_;
    std::unique_ptr<GuardedBuffer> picture_;  // null: draws to the window
    HWND window_ = nullptr;
    std::vector<uint32_t> pixels_;
};

}  // namespace tdkplay::check
