// The probes: each tries one thing with the plug-in, in a process of its own, and tells what it finds. A probe that
// comes back without a finding has passed; ContractFault ends one with a failure.
#pragma once

#include <algorithm>
#include <functional>
#include <string>

#include "player/base/PictureSize.h"
#include "player/check/CheckedPlugin.h"
#include "player/check/Findings.h"
#include "player/check/FrameThread.h"
#include "player/check/MemoryPreferences.h"
#include "player/check/PluginView.h"
#include "player/host/HostContext.h"

namespace tdkplay::check {

inline constexpr PictureSize kUsualSize = {320, 240};
inline constexpr PictureSize kSmallSize = {64, 48};  // where many frames count, and not what they show

struct ProbeContext {
    // So many turns in the usual time.
    int Turns(int usual, int least) const { return std::max(least, static_cast<int>(usual * Effort)); }
    bool IsThorough() const { return Effort >= 1; }

    const std::string Path;
    const double Effort;  // 1: as usual
    FindingWriter& Findings;
    FrameThread& Frames;
    const ComPtr<HostContext> Host = MakeCom<HostContext>();
};

// The plug-in in memory, as a view that shows it has it.
struct LoadedPlugin {
    explicit LoadedPlugin(ProbeContext& context)
        : Library(context.Path), Plugin(Library, context.Host.Get(), Preferences.Get()) {}

    PluginLibrary Library;
    const ComPtr<MemoryPreferences> Preferences = MakeCom<MemoryPreferences>();
    CheckedPlugin Plugin;
};

// The whole life of the plug-in in one view of this size, which `work` gets on the frame thread.
void PlayIn(ProbeContext& context, PictureSize size, const std::function<void(PluginView&)>& work);

// The load.
void ProbeLibrary(ProbeContext& context);
void ProbeExport(ProbeContext& context);
void ProbeObject(ProbeContext& context);
void ProbeDescription(ProbeContext& context);
void ProbeReload(ProbeContext& context);

// Drawing.
void ProbeFrames(ProbeContext& context);
void ProbeSizes(ProbeContext& context);
void ProbeRows(ProbeContext& context);
void ProbeSounds(ProbeContext& context);
void ProbeRecord(ProbeContext& context);
void ProbeResize(ProbeContext& context);
void ProbeWindow(ProbeContext& context);

// The calls around it.
void ProbeStartStop(ProbeContext& context);
void ProbeEarlyCalls(ProbeContext& context);
void ProbeCallsDuringDraw(ProbeContext& context);
void ProbeTwoObjects(ProbeContext& context);
void ProbePreferences(ProbeContext& context);
void ProbeConfigure(ProbeContext& context);

// The process around the plug-in.
void ProbeThreads(ProbeContext& context);
void ProbeProcess(ProbeContext& context);
void ProbeLeakPerFrame(ProbeContext& context);
void ProbeLeakPerStart(ProbeContext& context);

// What a user gets.
void ProbeSpeed(ProbeContext& context);
void ProbePicture(ProbeContext& context);
void ProbeFlashes(ProbeContext& context);
void ProbeRepeatable(ProbeContext& context);

}  // namespace tdkplay::check
