#include "player/check/Probes.h"

namespace tdkplay::check {

void PlayIn(ProbeContext& context, PictureSize size, const std::function<void(PluginView&)>& work) {
    LoadedPlugin loaded(context);
    loaded.Plugin.SetActive(true);
    context.Frames.Run([&] {
        PluginView view(loaded.Plugin, size);
        work(view);
    });
    loaded.Plugin.End();
}

}  // namespace tdkplay::check
