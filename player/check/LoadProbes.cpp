#include <array>
#include <cctype>
#include <cstdio>

#include "player/check/Probes.h"
#include "player/check/TestSound.h"

namespace tdkplay::check {
namespace {

constexpr GUID kNobodysInterface = {0x6D0B9D0A, 0x8F1B, 0x4C0E, {0x9A, 0x11, 0x52, 0x3C, 0x77, 0x08, 0xE1, 0xF4}};
constexpr int kReloads = 8;

void RequireGoodQuery(IUnknown& object) {
    void* none = &object;
    HRESULT result = S_OK;
    CallPlugin("QueryInterface", [&] { result = object.QueryInterface(kNobodysInterface, &none); });
    if (SUCCEEDED(result)) throw ContractFault("QueryInterface gives an interface that the object can't have");
    if (none) throw ContractFault("QueryInterface doesn't clear its out pointer when it has no such interface");
}

// All printable, but for letters beyond ASCII.
bool IsPrintable(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) {
        const auto code = static_cast<unsigned char>(c);
        return code >= 0x80 || std::isprint(code);
    });
}

// With another text in the buffer before, what was written must come out the same.
void CheckText(ProbeContext& context, const char* what, const std::string& text, const std::string& over,
               const std::string& before) {
    if (text.empty()) return context.Findings.Warn(std::string("says no ") + what);
    if (over.size() == static_cast<size_t>(kPluginTextSize))
        throw ContractFault(std::string("the ") + what + " has no terminator within its 257 bytes");
    if (over != before && over != text)
        throw ContractFault(std::string("the ") + what + " comes without a terminator: \"" + text + "\"");
    if (!IsPrintable(text)) context.Findings.Warn(std::string("the ") + what + " has unprintable characters");
}

std::string MaskText(uint32_t mask) {
    if ((mask & 0x1F) == 0x1F) return "all effects";
    if ((mask & 0x1F) == 0) return "no effects";
    std::array<char, 32> text = {};
    std::snprintf(text.data(), text.size(), "effect mask %u", mask & 0x1F);
    return text.data();
}

std::string Summary(const CheckedPlugin& plugin) {
    const PluginDescription& says = plugin.Says();
    std::string text = "\"" + says.Name + "\"" + (says.Creator.empty() ? "" : " by " + says.Creator);
    text += plugin.DrawsToWindow() ? ", draws to a window" : ", draws to a buffer, " + MaskText(says.EffectMask);
    text += says.WantsSpectrum ? ", reads the spectrum" : ", no spectrum";
    return text + (says.SupportConfigure ? ", has a dialog" : "");
}

}  // namespace

void ProbeLibrary(ProbeContext& context) {
    PluginLibrary library(context.Path);
    if (!library.Free()) context.Findings.Warn("stays in memory when it is freed");
    context.Findings.Note("loads, and goes when it is freed");
}

void ProbeExport(ProbeContext& context) {
    const PluginLibrary library(context.Path);
    if (!library.Factory()) throw ContractFault(std::string("doesn't export ") + kPluginFactoryName);
    context.Findings.Note(kPluginFactoryName);
}

void ProbeObject(ProbeContext& context) {
    const PluginLibrary library(context.Path);
    {
        const ComPtr<IUnknown> object = library.Make();
        RequireGoodQuery(*object);
        if (!QueryFor<IUnknown>(object.Get(), kIID_IUnknown)) throw ContractFault("doesn't offer IUnknown");
    }
    CheckedPlugin plugin(library, context.Host.Get(), nullptr);
    context.Findings.Note(plugin.IsOlder() ? "offers IMPAVisualization" : "offers IMPAVisualization2");
    plugin.End();
}

void ProbeDescription(ProbeContext& context) {
    LoadedPlugin loaded(context);
    CheckedPlugin& plugin = loaded.Plugin;
    const PluginDescription& says = plugin.Says();
    // What the add-on knew before lies in the buffers.
    const std::string before(kPluginTextSize - 1, 'x');
    const PluginDescription over = plugin.Describe(before);
    CheckText(context, "name", says.Name, over.Name, before);
    CheckText(context, "creator", says.Creator, over.Creator, before);
    CheckText(context, "description", says.Description, over.Description, before);
    const PluginDescription again = plugin.Describe("");
    if (!plugin.Touched().empty()) throw ContractFault(plugin.Touched());
    if (again.Name != says.Name || again.Creator != says.Creator || again.Description != says.Description)
        context.Findings.Warn("says something else when it is asked again");
    if (says.WantsSpectrum > 1) context.Findings.Warn("stores something else than true or false in wantsSpectrum");
    if (says.RenderMode > kRenderToWindow)
        context.Findings.Warn("says RenderMode " + std::to_string(says.RenderMode) + ", which counts as 0");
    if (plugin.IsOlder() && says.RenderMode == kRenderToWindow)
        throw ContractFault("asks for a window, which needs IMPAVisualization2: it is never drawn");
    context.Findings.Note(Summary(plugin));
    plugin.End();
}

void ProbeReload(ProbeContext& context) {
    const int reloads = context.Turns(kReloads, 3);
    for (int i = 0; i < reloads; ++i) {
        PluginLibrary library(context.Path);
        CheckedPlugin plugin(library, context.Host.Get(), nullptr);
        if (i % 2 != 0) {
            context.Frames.Run([&] {
                PluginView view(plugin, kSmallSize);
                view.Next(HardFrames().back().Frame);
            });
        }
        plugin.End();
    }
    context.Findings.Note("loaded and freed " + std::to_string(reloads) + " times");
}

}  // namespace tdkplay::check
