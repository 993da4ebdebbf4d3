#include "player/window/ViewGrid.h"

#include <algorithm>

#include "player/window/GridLayout.h"

namespace tdkplay {

ViewGrid::ViewGrid(IMPAVizMgr& manager, HWND parent, PictureSize room, const std::vector<PluginInfo>& plugins,
                   const std::vector<size_t>& shown)
    : manager_(manager), parent_(parent), places_(LayOutGrid(room, shown.size())) {
    for (size_t i = 0; i < shown.size(); ++i)
        cells_.push_back(std::make_unique<ViewCell>(manager, parent, places_[i], shown.size() > 1, plugins, shown[i]));
}

size_t ViewGrid::CellUnderMouse() const {
    POINT mouse = {};
    if (IsSingle() || !GetCursorPos(&mouse) || !ScreenToClient(parent_, &mouse)) return 0;
    const auto found =
        std::find_if(places_.begin(), places_.end(), [&mouse](const RECT& place) { return PtInRect(&place, mouse); });
    return found == places_.end() ? 0 : static_cast<size_t>(found - places_.begin());
}

void ViewGrid::TellClicks(IMPAClickReceiver& left, IMPAClickReceiver& right) {
    for (const auto& cell : cells_) cell->Picture().TellClicks(left, right);
}

void ViewGrid::TurnToMouse() {
    current_ = CellUnderMouse();
}

void ViewGrid::ChoosePlugin(const std::string& path) {
    cells_[current_]->Choose(path);
    if (!IsSingle()) RestoreAll();
}

void ViewGrid::StepPlugin(int direction) {
    TurnToMouse();
    cells_[current_]->Step(direction);
    if (!IsSingle()) RestoreAll();
}

bool ViewGrid::Refresh() {
    if (IsSingle()) return cells_.front()->Picture().Refresh();
    const std::vector<PluginInfo> plugins = ListPlugins(manager_);
    std::vector<ViewCell*> lost;
    for (const auto& cell : cells_) {
        cell->Picture().Refresh(plugins);
        if (!cell->Restore()) lost.push_back(cell.get());
    }
    for (ViewCell* cell : lost) FindStandIn(*cell, plugins);
    RestoreAll();
    return true;
}

bool ViewGrid::IsShown(const PluginInfo& plugin) const {
    return std::any_of(cells_.begin(), cells_.end(),
                       [&plugin](const auto& cell) { return cell->Plugin().Path == plugin.Path; });
}

// One that no view shows, if there is one.
void ViewGrid::FindStandIn(ViewCell& cell, const std::vector<PluginInfo>& plugins) {
    for (const PluginInfo& plugin : plugins)
        if (!IsShown(plugin) && cell.StandIn(plugin)) return;
    for (const PluginInfo& plugin : plugins)
        if (cell.StandIn(plugin)) return;
}

// A view that leaves a plug-in has it unloaded for all the views that show it.
void ViewGrid::RestoreAll() {
    for (const auto& cell : cells_) cell->Restore();
}

void ViewGrid::Resize(PictureSize room) {
    places_ = LayOutGrid(room, cells_.size());
    for (size_t i = 0; i < cells_.size(); ++i) cells_[i]->Place(places_[i]);
}

void ViewGrid::Hide() {
    for (const auto& cell : cells_) cell->Picture().Hide();
}

void ViewGrid::Show(PictureSize room) {
    places_ = LayOutGrid(room, cells_.size());
    for (size_t i = 0; i < cells_.size(); ++i) cells_[i]->Show(places_[i]);
}

}  // namespace tdkplay
