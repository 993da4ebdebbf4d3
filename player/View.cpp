#include "player/View.h"

#include <array>

#include "player/ExitCode.h"

namespace tdkplay {
namespace {

constexpr uint32_t kPathSize = 4096;

}  // namespace

View::View(IMPAVizMgr& manager, HWND parent, int width, int height, const std::vector<PluginInfo>& plugins,
           size_t index)
    : manager_(manager), plugins_(plugins), index_(index) {
    auto parentId = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(parent));
    if (FAILED(manager_.CreateVizWindow(&view_, &parentId)) || !view_)
        throw PlayerError(ExitCode::kNoAddOn, "the add-on makes no view");
    if (!Select(index)) StepPlugin(1);
    // It fails as long as the add-on hasn't made its window yet; the view then comes up by itself.
    view_->Show(width, height);
}

View::~View() {
    manager_.DestroyVizWindow(view_);
}

bool View::Select(size_t index) {
    view_->SelectPlugin(plugins_[index].Path.c_str());
    std::array<char, kPathSize> path = {};
    const bool isShown =
        SUCCEEDED(view_->GetCurrentPlugin(path.data(), kPathSize)) && plugins_[index].Path == path.data();
    if (isShown) index_ = index;
    return isShown;
}

void View::StepPlugin(int direction) {
    const size_t count = plugins_.size();
    const size_t step = direction > 0 ? 1 : count - 1;
    for (size_t index = (index_ + step) % count; index != index_; index = (index + step) % count)
        if (Select(index)) return;
}

}  // namespace tdkplay
