// The plug-in that is checked: its library and its object, spoken to as the add-on does it. Each call is named to the
// parent while it runs; one that throws is a ContractFault.
#pragma once

#include <tdkviz/plugin.h>
#include <windows.h>

#include <functional>
#include <string>

#include "player/check/GuardedBuffer.h"
#include "player/host/ComObject.h"

namespace tdkplay::check {

// Runs one call into the plug-in. Throws ContractFault if the call throws.
void CallPlugin(const std::string& name, const std::function<void()>& call);

// The library in memory.
class PluginLibrary {
public:
    // Throws ContractFault with the reason.
    explicit PluginLibrary(const std::string& path);
    // Frees it.
    ~PluginLibrary();
    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;

    // Null if it isn't exported.
    MPACreateVisualizationFunction Factory() const;
    // A new object of the factory's. Throws ContractFault if there is none.
    ComPtr<IUnknown> Make() const;
    // Frees it now. Whether the system has let it go. A library that threads of its own may still run in stays.
    bool Free();

private:
    const std::string path_;
    const size_t threadsBefore_;
    HMODULE module_ = nullptr;
};

// What GetInfo and GetCapabilities say.
struct PluginDescription {
    std::string Name, Creator, Description;
    uint32_t EffectMask = kEffectsAll;
    uint8_t WantsSpectrum = 0;  // the byte as it was stored
    uint32_t RenderMode = kRenderToBuffer;
    uint32_t SupportConfigure = 0;
};

class CheckedPlugin {
public:
    // The four steps of a load. `preferences` null: none are handed over. Throws ContractFault.
    CheckedPlugin(const PluginLibrary& library, IUnknown* context, IKVAPreferences* preferences);
    // As when a view takes another plug-in; see End.
    ~CheckedPlugin();
    CheckedPlugin(const CheckedPlugin&) = delete;
    CheckedPlugin& operator=(const CheckedPlugin&) = delete;

    const PluginDescription& Says() const { return says_; }
    bool IsOlder() const { return one_.Get() != nullptr; }
    // The older interface has no window mode, whatever it says.
    bool DrawsToWindow() const { return two_.Get() != nullptr && says_.RenderMode == kRenderToWindow; }

    // What it has written or read beside the buffers of GetInfo and GetCapabilities; empty: nothing.
    const std::string& Touched() const { return touched_; }
    // GetInfo once more, with this text in the buffers before.
    PluginDescription Describe(const std::string& before);
    void SetActive(bool active);
    void OnClick(uint32_t x, uint32_t y);
    void Draw(void* pixels, int32_t width, int32_t height, int32_t pitch, VizAnalysisFrame* frame);
    void SetWindow(HWND window);
    void DrawToWindow(HWND window, VizAnalysisFrame* frame);
    HRESULT Configure(HWND parent);
    // SetActive(0), SetWindow(0) if it draws to windows, Close if it offers it, and the last Release.
    void End();

private:
    void Initialize(IUnknown* context);
    void AskCapabilities();
    void NoteTouched(GuardedBuffer& buffer, const char* call);

    ComPtr<IMPAVisualization2> two_;
    ComPtr<IMPAVisualization> one_;
    PluginDescription says_;
    std::string touched_;
};

}  // namespace tdkplay::check
