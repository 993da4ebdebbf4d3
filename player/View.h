// One visualization inside a window of the player.
#pragma once

#include <tdkviz/viz.h>
#include <windows.h>

#include <string>
#include <vector>

#include "player/PluginCatalog.h"

namespace tdkplay {

class View {
public:
    // Shows the plug-in of this index, filling `parent`. Throws PlayerError with kNoAddOn.
    View(IMPAVizMgr& manager, HWND parent, int width, int height, const std::vector<PluginInfo>& plugins, size_t index);
    // The parent window must still be there.
    ~View();
    View(const View&) = delete;
    View& operator=(const View&) = delete;

    const PluginInfo& Plugin() const { return plugins_[index_]; }
    // To the next (1) or the one before (-1), in a circle; one that can't be loaded is passed over.
    void StepPlugin(int direction);
    void Resize(int width, int height) { view_->Resize(width, height); }
    void Hide() { view_->Hide(); }
    void Show(int width, int height) { view_->Show(width, height); }

private:
    bool Select(size_t index);

    IMPAVizMgr& manager_;
    const std::vector<PluginInfo> plugins_;
    size_t index_;
    IMPAVizWindow* view_ = nullptr;  // the manager's, until DestroyVizWindow
};

}  // namespace tdkplay
