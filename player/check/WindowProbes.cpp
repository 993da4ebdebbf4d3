#include <tdkplatform.h>

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <thread>

#include "player/check/Probes.h"
#include "player/check/TestSound.h"

namespace tdkplay::check {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr PictureSize kSizes[] = {{1, 1}, {33, 17}, {320, 240}, {300, 500}, {1200, 700}};
constexpr milliseconds kModalPause{500};  // a Configure that isn't back by then waits for its dialog
constexpr milliseconds kClosePatience{10000};
constexpr milliseconds kCloseTurn{20};

TdkpCounts CountNow() {
    TdkpCounts counts = {};
    TdkpCount(&counts);
    return counts;
}

// As a user closes every window on the screen.
int CloseAllWindows() {
    int count = 0;
    for (HWND window = nullptr; (window = FindWindowExA(nullptr, window, nullptr, nullptr)) != nullptr; ++count)
        TdkpFeedClose(window);
    return count;
}

// Closes the dialog of a Configure that doesn't come back before it.
class ModalCloser {
public:
    ModalCloser() : thread_([this] { Run(); }) {}
    ~ModalCloser() {
        {
            const std::lock_guard hold(mutex_);
            isOver_ = true;
        }
        changed_.notify_all();
        thread_.join();
    }
    ModalCloser(const ModalCloser&) = delete;
    ModalCloser& operator=(const ModalCloser&) = delete;

private:
    void Run() {
        std::unique_lock hold(mutex_);
        for (milliseconds pause = kModalPause; !changed_.wait_for(hold, pause, [this] { return isOver_; });
             pause = kCloseTurn)
            CloseAllWindows();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    bool isOver_ = false;
    std::thread thread_;
};

// Serves the calling thread's windows until all have gone. False beyond the patience.
bool CloseAndWait() {
    const auto limit = steady_clock::now() + kClosePatience;
    while (CloseAllWindows() != 0) {
        if (steady_clock::now() > limit) return false;
        TdkpDispatchMessages();
        std::this_thread::sleep_for(kCloseTurn);
    }
    return true;
}

void Configure(CheckedPlugin& plugin) {
    HRESULT result = S_OK;
    {
        const ModalCloser closer;
        result = plugin.Configure(nullptr);
    }
    if (SUCCEEDED(result)) return;
    std::array<char, 80> text = {};
    std::snprintf(text.data(), text.size(), "says SupportConfigure, and Configure gives 0x%08X",
                  static_cast<unsigned>(result));
    throw ContractFault(text.data());
}

void RequireNothingLeft(const TdkpCounts& before) {
    const TdkpCounts now = CountNow();
    if (now.windows > before.windows) throw ContractFault("a window of its own stands after its end");
    if (now.gdiObjects > before.gdiObjects)
        throw ContractFault("leaves " + std::to_string(now.gdiObjects - before.gdiObjects) +
                            " GDI objects behind; a device context must go back in Close at the latest");
}

}  // namespace

void ProbeConfigure(ProbeContext& context) {
    const TdkpCounts before = CountNow();
    {
        LoadedPlugin loaded(context);
        if (!loaded.Plugin.Says().SupportConfigure) return context.Findings.Skip("it has no dialog");
        loaded.Plugin.SetActive(true);
        Configure(loaded.Plugin);
        const bool isModal = CountNow().windows == before.windows;
        TestMusic music;
        context.Frames.Run([&] {
            PluginView view(loaded.Plugin, kUsualSize);
            for (size_t i = 0; i < 5; ++i) view.Next(music.At(i));
        });
        if (!CloseAndWait()) throw ContractFault("its dialog doesn't close when it is asked to");
        if (!isModal) Configure(loaded.Plugin);  // stands when the plug-in ends
        loaded.Plugin.End();
        context.Findings.Note(isModal ? "the dialog opens and closes" : "the dialog opens, closes and goes at the end");
    }
    RequireNothingLeft(before);
}

void ProbeWindow(ProbeContext& context) {
    LoadedPlugin loaded(context);
    CheckedPlugin& plugin = loaded.Plugin;
    if (!plugin.DrawsToWindow()) return context.Findings.Skip("it draws to a buffer");
    const TdkpCounts before = CountNow();
    TestMusic music;
    plugin.SetActive(true);
    context.Frames.Run([&] {
        for (const PictureSize size : kSizes) {
            PluginView view(plugin, size);
            for (size_t i = 0; i < kFramesPerSecond; ++i) view.Draw(music.At(i));
            const std::vector<uint32_t> shown = view.Pixels();
            plugin.SetWindow(nullptr);
            for (size_t i = kFramesPerSecond; i < 2 * kFramesPerSecond; ++i) view.Draw(music.At(i));
            if (view.Pixels() != shown) throw ContractFault("paints on after SetWindow(0)");
        }
        PluginView view(plugin, kUsualSize);
        const std::vector<uint32_t> blank = view.Pixels();
        for (size_t i = 0; i < kFramesPerSecond; ++i) view.Draw(music.At(i));
        if (view.Pixels() == blank) throw ContractFault("paints nothing into its window");
        view.Resize({200, 150});
        for (size_t i = 0; i < kFramesPerSecond; ++i) view.Draw(music.At(i));
    });
    plugin.End();
    RequireNothingLeft(before);
    context.Findings.Note("paints, stops when the window is withdrawn, leaves nothing after Close");
}

}  // namespace tdkplay::check
