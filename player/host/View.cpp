#include "player/host/View.h"

#include <algorithm>
#include <array>

#include "player/base/ExitCode.h"

namespace tdkplay {
namespace {

constexpr uint32_t kPathSize = 4096;

}  // namespace

View::View(IMPAVizMgr& manager, HWND parent, PictureSize size, const std::vector<PluginInfo>& plugins, size_t index)
    : manager_(manager), plugins_(plugins), index_(index) {
    auto parentId = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(parent));
    if (FAILED(manager_.CreateVizWindow(&view_, &parentId)) || !view_)
        throw PlayerError(ExitCode::kNoAddOn, "the add-on makes no view");
    if (!Select(index)) StepPlugin(1);
    // It fails as long as the add-on hasn't made its window yet; the view then comes up by itself.
    Show(size);
}

View::~View() {
    manager_.DestroyVizWindow(view_);
}

void View::TellClicks(IMPAClickReceiver& left, IMPAClickReceiver& right) {
    view_->AddClickReceiver(&left);
    view_->AddRightClickReceiver(&right);
}

bool View::Select(size_t index) {
    view_->SelectPlugin(plugins_[index].Path.c_str());
    if (CurrentPath() != plugins_[index].Path) return false;
    index_ = index;
    shown_ = plugins_[index];
    return true;
}

std::string View::CurrentPath() const {
    std::array<char, kPathSize> path = {};
    return SUCCEEDED(view_->GetCurrentPlugin(path.data(), kPathSize)) ? path.data() : "";
}

// Once around: the last one is where it began, for a view that shows nothing yet.
void View::StepPlugin(int direction) {
    const size_t count = plugins_.size();
    for (size_t tries = 1; tries <= count; ++tries)
        if (Select((index_ + (direction > 0 ? tries : count - tries)) % count)) return;
}

std::vector<PluginInfo>::const_iterator View::Find(const std::string& path) const {
    return std::find_if(plugins_.begin(), plugins_.end(),
                        [&path](const PluginInfo& plugin) { return plugin.Path == path; });
}

bool View::Select(const std::string& path) {
    const auto found = Find(path);
    return found != plugins_.end() && Select(static_cast<size_t>(found - plugins_.begin()));
}

bool View::Refresh(std::vector<PluginInfo> plugins) {
    plugins_ = std::move(plugins);
    const std::string path = CurrentPath();
    const auto found = Find(path);
    if (found != plugins_.end()) {
        index_ = static_cast<size_t>(found - plugins_.begin());
        shown_ = *found;
        return true;
    }
    if (path.empty()) shown_ = {};
    return plugins_.empty() && path.empty();
}

}  // namespace tdkplay
