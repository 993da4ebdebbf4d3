// One or several visualizations on the same audio, in a grid that follows the room that it is given.
#pragma once

#include <memory>
#include <vector>

#include "player/window/ViewCell.h"

namespace tdkplay {

// For the thread that made `parent`.
class ViewGrid {
public:
    // A view for each index in `shown`, from the upper left corner of `parent`. A single one stands in `parent`
    // itself, several in child windows. Throws PlayerError with kNoAddOn.
    ViewGrid(IMPAVizMgr& manager, HWND parent, PictureSize room, const std::vector<PluginInfo>& plugins,
             const std::vector<size_t>& shown);

    // Tells these of clicks on the pictures from now on; they outlive the grid. [frame]
    void TellClicks(IMPAClickReceiver& left, IMPAClickReceiver& right);
    // The view under the mouse, else the first one, is the one that the next three are about from now on.
    void TurnToMouse();
    // Without name and path if there is none left to show.
    const PluginInfo& Plugin() const { return cells_[current_]->Plugin(); }
    // The plug-in of this path, if it is listed and can be loaded.
    void ChoosePlugin(const std::string& path);
    // Turns to the mouse and goes to the next plug-in (1) or the one before (-1).
    void StepPlugin(int direction);
    // As listed last.
    const std::vector<PluginInfo>& Plugins() const { return cells_.front()->Picture().Plugins(); }
    // Lists the plug-ins anew. A single view follows the add-on; false as long as what it shows isn't in the list.
    // Several views, which the add-on all gives the same plug-in when one goes, return to their own.
    bool Refresh();
    void Resize(PictureSize room);
    void Hide();
    void Show(PictureSize room);

private:
    bool IsSingle() const { return cells_.size() == 1; }
    size_t CellUnderMouse() const;
    bool IsShown(const PluginInfo& plugin) const;
    void FindStandIn(ViewCell& cell, const std::vector<PluginInfo>& plugins);
    void RestoreAll();

    IMPAVizMgr& manager_;
    const HWND parent_;
    std::vector<RECT> places_;
    std::vector<std::unique_ptr<ViewCell>> cells_;
    size_t current_ = 0;
};

}  // namespace tdkplay
