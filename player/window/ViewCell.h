// One view of a grid: cut to the size of its cell, and with a plug-in of its own whatever the other views do.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "player/host/View.h"

namespace tdkplay {

class ViewCell {
public:
    // In a child window of `parent` if it shares the parent with others. Throws PlayerError with kNoAddOn.
    ViewCell(IMPAVizMgr& manager, HWND parent, const RECT& place, bool shares, const std::vector<PluginInfo>& plugins,
             size_t index);

    View& Picture() { return *view_; }
    const PluginInfo& Plugin() const { return view_->Plugin(); }
    // In the parent's client area, pixels.
    void Place(const RECT& place);
    void Show(const RECT& place);

    void Step(int direction);
    void Choose(const std::string& path);
    // Back to its own plug-in, or to what stands in for it while that isn't in the list. False if neither is.
    bool Restore() { return view_->Select(own_) || view_->Select(standIn_); }
    // False if that plug-in can't be shown either.
    bool StandIn(const PluginInfo& plugin);

private:
    struct WindowDestroyer {
        using pointer = HWND;
        void operator()(HWND window) const { DestroyWindow(window); }
    };

    std::unique_ptr<HWND, WindowDestroyer> window_;
    std::unique_ptr<View> view_;
    std::string own_;      // path
    std::string standIn_;  // path
};

}  // namespace tdkplay
