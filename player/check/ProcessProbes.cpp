#include <algorithm>
#include <chrono>
#include <thread>

#include "player/base/Joined.h"
#include "player/check/Probes.h"
#include "player/check/ProcessState.h"
#include "player/check/TestSound.h"

namespace tdkplay::check {
namespace {

constexpr PictureSize kModest = {160, 120};
constexpr std::chrono::seconds kThreadPatience{3};
constexpr std::chrono::milliseconds kThreadPause{5};
// What grows in all of these windows in a row, grows for ever.
constexpr int kWindows = 4;
constexpr long kLeastGrowth = 8;  // bytes each turn

std::vector<std::string> ThreadsBeyond(size_t count) {
    const auto limit = std::chrono::steady_clock::now() + kThreadPatience;
    std::vector<std::string> names = OtherThreads();
    while (names.size() > count && std::chrono::steady_clock::now() < limit) {
        std::this_thread::sleep_for(kThreadPause);
        names = OtherThreads();
    }
    if (names.size() <= count) names.clear();
    return names;
}

// The least growth of one figure from window to window, for each turn.
class Growth {
public:
    Growth() { uses_.reserve(kWindows + 1); }
    void Add(const ResourceUse& use) { uses_.push_back(use); }
    // In words; empty: nothing grows.
    std::vector<std::string> Tell(int turns, const std::string& turn) const {
        std::vector<std::string> texts;
        const auto tell = [&](long ResourceUse::*figure, const char* unit, long least) {
            const long growth = Least(figure), each = growth / turns;
            if (growth < least) return;
            const std::string often = each != 0 ? " each " + turn : " in " + std::to_string(turns) + " " + turn + "s";
            const long count = each != 0 ? each : growth;
            texts.push_back(std::to_string(count) + " " + unit + (count == 1 ? "" : "s") + often);
        };
        tell(&ResourceUse::Bytes, "byte", kLeastGrowth * turns);
        tell(&ResourceUse::Files, "file descriptor", 1);
        tell(&ResourceUse::Threads, "thread", 1);
        // The heap may take another piece now and then.
        tell(&ResourceUse::Mappings, "mapping", std::max(2, turns / 2));
        return texts;
    }

private:
    long Least(long ResourceUse::*figure) const {
        long least = uses_[1].*figure - uses_[0].*figure;
        for (size_t i = 2; i < uses_.size(); ++i) least = std::min(least, uses_[i].*figure - uses_[i - 1].*figure);
        return least;
    }

    std::vector<ResourceUse> uses_;
};

void TellGrowth(ProbeContext& context, const Growth& growth, int turns, const std::string& turn) {
    const std::vector<std::string> texts = growth.Tell(turns, turn);
    if (!texts.empty()) throw ContractFault("loses " + Joined(texts, ", "));
    std::string note = "nothing grows in " + std::to_string(turns * kWindows) + " " + turn + "s";
    if (!ResourceUse::IsExact()) note += ", memory aside: this build has a heap of its own";
    context.Findings.Note(note);
}

}  // namespace

void ProbeThreads(ProbeContext& context) {
    const size_t before = OtherThreads().size();
    LoadedPlugin loaded(context);
    TestMusic music;
    loaded.Plugin.SetActive(true);
    // Frames on the frame thread, and then on another one: a view may end and another one begin.
    FrameThread other;
    for (FrameThread* thread : {&context.Frames, &other}) {
        thread->Run([&] {
            PluginView view(loaded.Plugin, kModest);
            for (size_t i = 0; i < kFramesPerSecond; ++i) view.Next(music.At(i));
        });
    }
    const size_t own = OtherThreads().size() - before - 1;
    loaded.Plugin.End();
    const std::vector<std::string> left = ThreadsBeyond(before + 1);
    if (!left.empty())
        throw ContractFault("leaves " + std::to_string(left.size() - before - 1) +
                            " of its threads running after the last Release");
    context.Findings.Note(own == 0 ? "draws on any thread, has none of its own"
                                   : "draws on any thread, ends its own " + std::to_string(own));
}

void ProbeProcess(ProbeContext& context) {
    const ProcessState before;
    const ThreadState threadBefore;
    std::vector<std::string> changes;
    {
        LoadedPlugin loaded(context);
        for (const std::string& change : ThreadState().ChangesSince(threadBefore)) changes.push_back(change);
        TestMusic music;
        loaded.Plugin.SetActive(true);
        loaded.Plugin.OnClick(1, 1);
        context.Frames.Run([&] {
            const ThreadState frameBefore;
            PluginView view(loaded.Plugin, kModest);
            for (size_t i = 0; i < kFramesPerSecond && changes.empty(); ++i) {
                view.Next(music.At(i));
                for (const std::string& change : ThreadState().ChangesSince(frameBefore))
                    changes.push_back(change + " of the frame thread");
            }
            frameBefore.Restore();
        });
        loaded.Plugin.End();
    }
    threadBefore.Restore();
    for (const std::string& change : ProcessState().ChangesSince(before)) changes.push_back(change);
    if (!changes.empty()) throw ContractFault("changes " + Joined(changes, ", "));
    context.Findings.Note("signals, floating point, locale, folder, umask, environment, standard files");
}

void ProbeLeakPerFrame(ProbeContext& context) {
    TestMusic music;
    const int turns = context.Turns(150, 25);
    for (int i = 0; i < turns; ++i) music.At(static_cast<size_t>(i));
    Growth growth;
    PlayIn(context, kModest, [&](PluginView& view) {
        for (int window = 0; window <= kWindows + 1; ++window) {  // the first one warms up
            if (window > 0) growth.Add(ResourceUse::Now());
            for (int i = 0; window <= kWindows && i < turns; ++i) view.Next(music.At(static_cast<size_t>(i)));
        }
    });
    TellGrowth(context, growth, turns, "frame");
}

void ProbeLeakPerStart(ProbeContext& context) {
    const int turns = context.Turns(20, 5);
    uint32_t noise = 1;
    const auto live = [&] {
        PlayIn(context, kModest, [&](PluginView& view) {
            for (int i = 0; i < 3; ++i) view.Next(NoiseFrame(noise));
        });
    };
    Growth growth;
    for (int window = 0; window <= kWindows + 1; ++window) {
        if (window > 0) growth.Add(ResourceUse::Now());
        for (int i = 0; window <= kWindows && i < turns; ++i) live();
    }
    TellGrowth(context, growth, turns, "start");
}

}  // namespace tdkplay::check
