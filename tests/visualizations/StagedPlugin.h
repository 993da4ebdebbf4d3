// One plug-in of the staged folder, loaded and spoken to as the add-on does it.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include <tdkviz/plugin.h>

namespace tdkviz::test {

// The names of all staged plug-ins, without folder and extension.
std::vector<std::string> StagedPlugins();

class StagedPlugin {
public:
    explicit StagedPlugin(const std::string& name, IKVAPreferences* preferences = nullptr);
    StagedPlugin(const StagedPlugin&) = delete;
    // As when a view takes another plug-in.
    ~StagedPlugin();

    IMPAVisualization2* Two() const { return two_; }
    bool DrawsToWindow() const { return renderMode_ == kRenderToWindow; }
    bool CanBeConfigured() const { return supportsConfigure_ != 0; }
    uint32_t EffectMask() const { return effectMask_; }

    void Draw(void* pixels, int width, int height, int pitch, const VizAnalysisFrame& frame);
    void DrawTo(HWND window, const VizAnalysisFrame& frame);

private:
    template <typename Interface>
    void Describe(Interface& plugin);

    HMODULE library_ = nullptr;
    IMPAVisualization2* two_ = nullptr;
    IMPAVisualization* one_ = nullptr;
    uint32_t effectMask_ = kEffectsAll;
    uint32_t renderMode_ = kRenderToBuffer;
    uint32_t supportsConfigure_ = 0;
};

// What the demo piece gives a plug-in, this many times a second.
inline constexpr int kFramesPerSecond = 25;
const std::vector<VizAnalysisFrame>& DemoFrames();

}  // namespace tdkviz::test
