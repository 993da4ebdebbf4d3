#include "player/render/SteppedRun.h"

#include <tdkplatform.h>

#include <algorithm>
#include <cmath>

#include "player/base/ExitCode.h"
#include "player/base/SettingsKey.h"
#include "player/render/Snapshot.h"

namespace tdkplay {
namespace {

constexpr int kColourDepth = 32;
constexpr uint32_t kLongestStep = 1000;  // milliseconds
constexpr char kSeedSetting[] = "VizRandomSeed";

}  // namespace

void SteppedRun::Prepare(const Options& options) {
    if (options.Seed) SettingsKey::OpenToWrite(kAddOnKey).SetNumber(kSeedSetting, *options.Seed);
    TdkpUseSteppedClock();
    const PictureSize size = options.SizeOrUsual();
    TdkpUseMemoryDisplay(size.Width, size.Height, kColourDepth);
}

SteppedRun::SteppedRun(const Options& options, Session& session, const Interrupt& interrupt)
    : options_(options), session_(session), interrupt_(interrupt) {}

SteppedRun::~SteppedRun() {
    session_.Sound().Stop();
}

HWND SteppedRun::AddViews(const std::vector<size_t>& plugins, const std::vector<SnapshotRequest>& snapshots) {
    shown_.push_back(std::make_unique<Shown>(options_, session_, plugins));
    for (const SnapshotRequest& snapshot : snapshots)
        moments_.push_back(
            {static_cast<uint64_t>(std::llround(snapshot.At * 1000.0)), snapshot.Path, shown_.back()->Window.Handle()});
    Settle();
    return shown_.back()->Window.Handle();
}

void SteppedRun::Run() {
    std::stable_sort(moments_.begin(), moments_.end(), [](const Moment& a, const Moment& b) { return a.At < b.At; });
    Play();
    for (const Moment& moment : moments_) {
        AdvanceTo(moment.At);
        if (interrupt_.IsRequested()) return;
        WritePng(ReadWindow(moment.Window), moment.Path);
    }
}

// Lets the other threads finish what they are at, and serves what they ask of this thread's windows.
void SteppedRun::Settle() {
    do TdkpSettle();
    while (TdkpDispatchMessages() != 0);
}

void SteppedRun::AdvanceTo(uint64_t time) {
    while (now_ < time && !interrupt_.IsRequested()) {
        const uint64_t wait = std::clamp(DeliverAhead(), 1u, kLongestStep);
        const uint64_t step = std::min(wait, time - now_);
        TdkpAdvanceClock(static_cast<DWORD>(step));
        now_ += step;
        Settle();
    }
}

uint32_t SteppedRun::DeliverAhead() {
    AudioPump::Step step = {};
    do step = session_.Sound().Pump().DeliverBlock();
    while (step.Result == AudioPump::State::kDelivered);
    return step.Wait;
}

}  // namespace tdkplay
