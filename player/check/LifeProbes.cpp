#include <array>
#include <atomic>
#include <cstdio>
#include <exception>
#include <thread>

#include "player/check/CrashHandler.h"
#include "player/check/Probes.h"
#include "player/check/SharedCalls.h"
#include "player/check/TestSound.h"

namespace tdkplay::check {
namespace {

constexpr uint32_t kFarAway = 0xFFFFFFFF;

void DrawSome(ProbeContext& context, CheckedPlugin& plugin, int frames) {
    uint32_t noise = 1;
    context.Frames.Run([&] {
        PluginView view(plugin, kSmallSize);
        for (int i = 0; i < frames; ++i) view.Next(NoiseFrame(noise));
    });
}

// Makes the calls that may come while a frame is drawn, from another thread, until it is told to stop.
class Disturber {
public:
    // `window` null: the plug-in draws to a buffer.
    Disturber(CheckedPlugin& plugin, HWND window) : thread_([this, &plugin, window] { Run(plugin, window); }) {}
    ~Disturber() {
        isStopped_ = true;
        if (thread_.joinable()) thread_.join();
    }
    // Throws what the thread has met.
    void Stop() {
        isStopped_ = true;
        thread_.join();
        if (thrown_) std::rethrow_exception(thrown_);
    }

private:
    void Run(CheckedPlugin& plugin, HWND window) {
        const HandlerStack stack;
        UseCallSlot(SharedCalls::kOtherSlot);
        try {
            for (uint32_t i = 0; !isStopped_; ++i) {
                plugin.OnClick(i % kUsualSize.Width, i % kUsualSize.Height);
                plugin.SetActive(i % 2 != 0);
                if (window) plugin.SetWindow(i % 2 != 0 ? window : nullptr);
                std::this_thread::yield();
            }
        } catch (...) {
            thrown_ = std::current_exception();
        }
    }

    std::atomic<bool> isStopped_ = false;
    std::exception_ptr thrown_;
    std::thread thread_;
};

}  // namespace

void ProbeStartStop(ProbeContext& context) {
    LoadedPlugin loaded(context);
    CheckedPlugin& plugin = loaded.Plugin;
    const int turns = context.Turns(60, 10);
    uint32_t noise = 1;
    for (int i = 0; i < turns; ++i) {
        plugin.SetActive(true);
        if (i % 3 == 0) plugin.SetActive(true);
        if (i % 4 != 0) {
            context.Frames.Run([&] {
                PluginView view(plugin, kSmallSize);
                for (int frames = i % 4; frames > 0; --frames) view.Next(NoiseFrame(noise));
            });
        }
        plugin.SetActive(false);
        if (i % 5 == 0) plugin.SetActive(false);
    }
    plugin.End();
    context.Findings.Note(std::to_string(turns) + " starts and stops, with none to three frames between them");
}

void ProbeEarlyCalls(ProbeContext& context) {
    {
        LoadedPlugin loaded(context);
        loaded.Plugin.OnClick(0, 0);
        loaded.Plugin.OnClick(kFarAway, kFarAway);
        loaded.Plugin.SetActive(false);
        loaded.Plugin.SetWindow(nullptr);
        loaded.Plugin.End();
    }
    {
        LoadedPlugin loaded(context);
        DrawSome(context, loaded.Plugin, 2);  // a view that stood still when it took the plug-in
        loaded.Plugin.End();
    }
    LoadedPlugin loaded(context);  // and one that never showed it
    loaded.Plugin.SetActive(true);
    loaded.Plugin.End();
    context.Findings.Note("clicks, SetActive and the end before the first frame");
}

void ProbeCallsDuringDraw(ProbeContext& context) {
    LoadedPlugin loaded(context);
    const int turns = context.Turns(200, 20);
    uint32_t noise = 1;
    loaded.Plugin.SetActive(true);
    context.Frames.Run([&] {
        PluginView view(loaded.Plugin, kUsualSize);
        Disturber disturber(loaded.Plugin, view.Window());
        for (int i = 0; i < turns; ++i) view.Next(NoiseFrame(noise));
        disturber.Stop();
    });
    const std::string calls =
        loaded.Plugin.DrawsToWindow() ? "clicks, SetActive and SetWindow" : "clicks and SetActive";
    loaded.Plugin.End();
    context.Findings.Note(calls + " from another thread in " + std::to_string(turns) + " frames");
}

void ProbeTwoObjects(ProbeContext& context) {
    LoadedPlugin first(context);
    first.Plugin.SetActive(true);
    DrawSome(context, first.Plugin, 3);
    {
        CheckedPlugin second(first.Library, context.Host.Get(), nullptr);
        second.SetActive(true);
        for (int i = 0; i < 3; ++i) {
            DrawSome(context, first.Plugin, 1);
            DrawSome(context, second, 1);
        }
        first.Plugin.End();
        DrawSome(context, second, 3);
        second.End();
    }
    context.Findings.Note("two at a time, and the first one ends first");
}

void ProbePreferences(ProbeContext& context) {
    const std::string longText(300, 'A');
    const char* const texts[] = {
        "", "x", "0", "1", "-1", "7", "99999999999999999999", "1e309", "\xFF\xFE", "a b", longText.c_str()};
    const PluginLibrary library(context.Path);
    bool keeps = false;
    const auto live = [&](MemoryPreferences* preferences) {
        CheckedPlugin plugin(library, context.Host.Get(), preferences);
        plugin.SetActive(true);
        DrawSome(context, plugin, 2);
        plugin.OnClick(1, 1);
        DrawSome(context, plugin, 2);
        plugin.End();
        keeps = keeps || (preferences && preferences->OthersHold() != 0);
    };
    live(nullptr);
    const auto stored = MakeCom<MemoryPreferences>();
    live(stored.Get());
    live(stored.Get());  // with what it has stored by then
    for (const char* text : texts) live(MakeCom<MemoryPreferences>(text).Get());
    if (keeps) context.Findings.Warn("keeps a reference on the preferences beyond its end");
    context.Findings.Note("none, empty ones, its own and nonsense");
}

}  // namespace tdkplay::check
