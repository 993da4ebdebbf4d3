// Ten thousand frames of everything that a host can do, in an order that a seed fixes.
#include <gtest/gtest.h>
#include <tdkplatform.h>

#include <fstream>
#include <random>

#include "tests/staged/NothingLeft.h"
#include "tests/staged/TestHost.h"

namespace tdkviz::test {
namespace {

constexpr int kFramePeriod = 33;  // ms at 30 frames a second

// Resident memory in KiB.
long ResidentMemory() {
    long total = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * 4;
}

class Soak {
public:
    Soak() : random_(20261122) {
        TestHost::InstallPlugins(plugins_);
        host_ = std::make_unique<TestHost>();
        view_ = host_->MakeView("Probe.tkv", 320, 240, kViewClickStepsPlugins);
        host_->StartDevice(200, 882);
        host_->SetState(kEngineStatePlaying);
    }
    void Run(int frames) {
        for (int frame = 0; frame < frames; ++frame) {
            if (frame % 12 == 0) Disturb();
            host_->Advance(kFramePeriod);
        }
    }
    TestHost& Host() { return *host_; }

private:
    void Disturb() {
        switch (random_() % 8) {
            case 0:
                view_->SelectPlugin(TestHost::PluginPath(plugins_[random_() % 4]).c_str());
                break;
            case 1:
                view_->Resize(static_cast<int>(random_() % 700) + 1, static_cast<int>(random_() % 500) + 1);
                break;
            case 2:
                host_->AnnounceFormat(static_cast<uint16_t>(random_() % 7), static_cast<uint16_t>(random_() % 5 * 8),
                                      48000, static_cast<uint16_t>(random_()));
                break;
            case 3:
                host_->StartDevice(static_cast<uint32_t>(random_() % 4) * 250,
                                   441 + static_cast<uint32_t>(random_() % 2000));
                break;
            case 4:
                host_->SetState(host_->engine->state == kEngineStatePlaying ? kEngineStatePaused : kEngineStatePlaying);
                break;
            case 5:
                SwapEngines();
                break;
            case 6:
                host_->SetAudioState(static_cast<uint32_t>(random_() % 4) | 1);
                host_->Seek(random_() % (60 * kRate));
                break;
            default:
                random_() % 2 ? view_->Hide() : view_->Show(320, 240);
                break;
        }
        if (host_->engine->state != kEngineStatePlaying && random_() % 2 == 0) host_->SetState(kEngineStatePlaying);
    }
    void SwapEngines() {
        TestEngine* next = host_->engine == &second_ ? &host_->firstEngine : &second_;
        next->state = host_->engine->state.load();
        host_->SetEngine(next);
    }
    const std::vector<std::string> plugins_{"Probe.tkv", "Good2.tkv", "GoodOld.tkv", "WindowMode.tkv"};
    std::mt19937 random_;
    TestEngine second_;
    std::unique_ptr<TestHost> host_;
    IMPAVizWindow* view_ = nullptr;
};

TEST(Soak, TenThousandFramesLeaveMemoryFlatAndNothingBehind) {
    const NothingLeft nothingLeft;
    {
        Soak soak;
        soak.Run(2000);
        const TdkpCounts early = Counts();
        [[maybe_unused]] const long memoryEarly = ResidentMemory();
        soak.Run(8000);
        const TdkpCounts late = Counts();
        EXPECT_LE(late.handles, early.handles + 2);
        EXPECT_LE(late.windows, early.windows);
        EXPECT_LE(late.gdiObjects, early.gdiObjects + 4);
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
        EXPECT_LE(ResidentMemory(), memoryEarly + 8 * 1024);
#endif
        soak.Host().Shutdown();
    }
}

}  // namespace
}  // namespace tdkviz::test
