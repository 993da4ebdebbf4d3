// The plug-ins that the add-on has found.
#pragma once

#include <tdkviz/viz.h>

#include <string>
#include <vector>

namespace tdkplay {

struct PluginInfo {
    std::string Name;
    std::string Path;  // as the add-on gave it; names the plug-in in all calls

    std::string RealPath() const;  // for people: where the file lies, whatever links lead to it
    std::string File() const;      // without its folder
    std::string FileName() const;  // without folder and ".tkv"
};

// All that can be loaded, in the add-on's order.
std::vector<PluginInfo> ListPlugins(IMPAVizMgr& manager);

// The index of the plug-in that `text` means: a path to its file, or without regard to case its name or its file's
// name, or the beginning of one if only one plug-in begins so. Empty text means the first. Throws PlayerError with
// kNoPlugins or kUnknownPlugin.
size_t FindPlugin(const std::vector<PluginInfo>& plugins, const std::string& text);

// The index of the plug-in whose file is called so, the first if there is none. Throws PlayerError with kNoPlugins.
size_t FindPluginFile(const std::vector<PluginInfo>& plugins, const std::string& file);

// Makes `chosen`, which isn't empty, as long as `views` with the plug-ins behind its last one, in a circle of
// `plugins`. None comes twice as long as there are others.
void FillUp(std::vector<size_t>& chosen, size_t views, size_t plugins);

}  // namespace tdkplay
