// One visualization inside a window of the player.
#pragma once

#include <tdkviz/viz.h>
#include <windows.h>

#include <string>
#include <vector>

#include "player/base/PictureSize.h"
#include "player/host/PluginCatalog.h"

namespace tdkplay {

class View {
public:
    // Shows the plug-in of this index in the upper left corner of `parent`. Throws PlayerError with kNoAddOn.
    View(IMPAVizMgr& manager, HWND parent, PictureSize size, const std::vector<PluginInfo>& plugins, size_t index);
    // The parent window must still be there.
    ~View();
    View(const View&) = delete;
    View& operator=(const View&) = delete;

    // Tells these of clicks on the picture from now on; they outlive the view. [frame]
    void TellClicks(IMPAClickReceiver& left, IMPAClickReceiver& right);
    // Without name and path if there is none left to show.
    const PluginInfo& Plugin() const { return shown_; }
    // As listed last.
    const std::vector<PluginInfo>& Plugins() const { return plugins_; }
    // To the next (1) or the one before (-1), in a circle; one that can't be loaded is passed over.
    void StepPlugin(int direction);
    // To the plug-in of this path. False if it isn't in the list or can't be loaded; the view keeps what it had then.
    bool Select(const std::string& path);
    // Lists the plug-ins anew and sees which one the add-on shows. False as long as that one isn't in the list.
    bool Refresh() { return Refresh(ListPlugins(manager_)); }
    bool Refresh(std::vector<PluginInfo> plugins);
    void Resize(PictureSize size) { view_->Resize(size.Width, size.Height); }
    void Hide() { view_->Hide(); }
    void Show(PictureSize size) { view_->Show(size.Width, size.Height); }

private:
    bool Select(size_t index);
    std::vector<PluginInfo>::const_iterator Find(const std::string& path) const;
    std::string CurrentPath() const;

    IMPAVizMgr& manager_;
    std::vector<PluginInfo> plugins_;
    size_t index_;  // where the shown plug-in is in the list, or was
    PluginInfo shown_;
    IMPAVizWindow* view_ = nullptr;  // the manager's, until DestroyVizWindow, which also ends its clicks
};

}  // namespace tdkplay
