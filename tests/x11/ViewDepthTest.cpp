// Views of every size on screens of every depth: the real add-on, with and without the real converter.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <tdkplatform.h>
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "src/support/RegistryKey.h"
#include "tests/plugins/testplugins/ProbePicture.h"
#include "tests/staged/TestHost.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/x11/XServer.h"

namespace tdkviz::test {
namespace {

const std::string kCodecs = STAGE_DIR "/Codecs";

constexpr std::chrono::milliseconds kLookForFrames{300};

struct DepthCase {
    const char* name;
    int depth;
    int tolerance;  // of each colour's parts
    bool converts;
};
constexpr DepthCase kDepths[] = {
    {"Depth24", 24, 0, true}, {"Depth24WithoutConverter", 24, 0, false},
    {"Depth16", 16, 7, true}, {"Depth16WithoutConverter", 16, 7, false},
    {"Depth15", 15, 7, true}, {"Depth15WithoutConverter", 15, 7, false},
};
void PrintTo(const DepthCase& c, std::ostream* out) {
    *out << c.name;
}

int Distance(DWORD a, DWORD b) {
    int largest = 0;
    for (const int shift : {0, 8, 16})
        largest = std::max(largest, std::abs(int(a >> shift & 0xFF) - int(b >> shift & 0xFF)));
    return largest;
}

// A host with one view on a server of its own, on the machine's clock.
class DepthHost {
public:
    DepthHost(int depth, bool converts) : server_(depth) {
        server_.Use();
        TestHost::InstallPlugins({"Probe.tkv"});
        host_ = std::make_unique<TestHost>(converts ? kCodecs : "");
        probe_ = WatchProbe([this](const ProbeFrame& frame) {
            lastWidth_ = frame.width;
            lastHeight_ = frame.height;
            ++frames_;
        });
        SymbolOf<void (*)(bool)>(GetModuleHandleA(TestHost::PluginPath("Probe.tkv").c_str()), "SetProbePicture")(true);
        view_ = host_->MakeView("Probe.tkv", 16, 16);
        host_->StartDevice(120, 441);
        host_->SetState(kEngineStatePlaying);
    }
    // The probe watches as long as there may be frames.
    ~DepthHost() { host_.reset(); }

    bool Running() const { return server_.Running() && view_ != nullptr; }
    int Frames() const { return frames_; }
    bool PlayUntil(const std::function<bool()>& done) { return host_->PlayUntil(done); }
    void PlayFor(std::chrono::milliseconds time) { host_->PlayFor(time); }
    void Resize(int width, int height) { view_->Resize(width, height); }
    // Gives the view this size and waits until a frame of `frameWidth` is seen.
    bool ShowAt(int width, int height, int frameWidth) {
        Resize(width, height);
        if (!PlayUntil([&] { return lastWidth_ == frameWidth; })) return false;
        const int before = frames_;
        return PlayUntil([&] { return frames_ > before + 1; });
    }
    int FrameWidth() const { return lastWidth_; }
    int FrameHeight() const { return lastHeight_; }
    HWND Window() const { return host_->ViewWindow(); }

private:
    XServer server_;
    std::atomic<int> frames_{0}, lastWidth_{0}, lastHeight_{0};
    std::shared_ptr<void> probe_;
    std::unique_ptr<TestHost> host_;
    IMPAVizWindow* view_ = nullptr;
};

// The first pixel that isn't of the frame scaled to the window, or "".
std::string FirstFault(const Picture& picture, int frameWidth, int frameHeight, int tolerance) {
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            const DWORD expected = ProbePictureColor(x * frameWidth / picture.width, y * frameHeight / picture.height,
                                                     frameWidth, frameHeight);
            if (Distance(picture.At(x, y), expected) > tolerance)
                return std::to_string(x) + "," + std::to_string(y) + " is " + std::to_string(picture.At(x, y));
        }
    }
    return "";
}

bool IsConverterLoaded() {
    const std::unique_ptr<void, int (*)(void*)> found(
        dlopen((kCodecs + "/qzcolor.so").c_str(), RTLD_LAZY | RTLD_NOLOAD),
        [](void* library) { return library ? dlclose(library) : 0; });
    return found != nullptr;
}

class PaletteViewTest : public testing::Test {
protected:
    void SetUp() override {
        if (!XServer::IsInstalled()) GTEST_SKIP() << "Xvfb is not installed";
        if (!std::filesystem::exists(kCodecs)) GTEST_SKIP() << "there is no converter here";
    }
};
class ViewDepthTest : public PaletteViewTest, public testing::WithParamInterface<DepthCase> {};

INSTANTIATE_TEST_SUITE_P(Screens, ViewDepthTest, testing::ValuesIn(kDepths),
                         [](const auto& test) { return std::string(test.param.name); });

// A frame of the largest window takes the thread sanitizer seconds, all of them in one thread's pixels.
#ifdef __SANITIZE_THREAD__
constexpr int kLargestWidth = 1280;
#else
constexpr int kLargestWidth = 3840;
#endif

TEST_P(ViewDepthTest, ShowsTheSamePictureInEverySize) {
    const DepthCase& c = GetParam();
    DepthHost host(c.depth, c.converts);
    ASSERT_TRUE(host.Running());
    const struct {
        int width, height, windowWidth, windowHeight, frameWidth;
    } sizes[] = {{1, 1, 4, 4, 4},
                 {320, 240, 320, 240, 320},
                 {321, 240, 324, 240, 162},
                 {1280, 960, 1280, 960, 640},
                 {3840, 2160, 3840, 2160, 1920},
                 {7, 1000, 8, 1000, 8}};
    for (const auto& size : sizes) {
        if (size.width > kLargestWidth) continue;
        SCOPED_TRACE(testing::Message() << size.width << "x" << size.height);
        ASSERT_TRUE(host.ShowAt(size.width, size.height, size.frameWidth));
        EXPECT_EQ(IsConverterLoaded(), c.converts);
        const Picture picture(host.Window(), size_t{3840} * 2160);
        ASSERT_EQ(picture.width, size.windowWidth);
        ASSERT_EQ(picture.height, size.windowHeight);
        EXPECT_EQ(FirstFault(picture, host.FrameWidth(), host.FrameHeight(), c.tolerance), "");
    }
}

// On a screen with a palette nothing is drawn, and what is seen is black.
TEST_F(PaletteViewTest, ViewsAreBlackAndNothingIsDrawn) {
    DepthHost host(8, true);
    ASSERT_TRUE(host.Running());
    ASSERT_TRUE(host.PlayUntil([&] { return host.Window() != nullptr; }));
    for (const int size : {64, 500}) {
        host.PlayFor(kLookForFrames);
        const Picture picture(host.Window());
        EXPECT_GT(picture.width, 0);
        EXPECT_EQ(picture.FirstOtherThan(0), -1);
        EXPECT_EQ(host.Frames(), 0);
        host.Resize(size, size);
    }
}

// Each frame with random effects takes the next seed, and the last one is stored at the end.
TEST_F(PaletteViewTest, SeedsAreUsedOnlyWhereSomethingIsDrawn) {
    constexpr uint32_t kSeed = 5000;
    for (const int depth : {24, 8}) {
        for (const char* name : {"VizOn", "VizRandom"}) StoreSetting(name, 1);
        StoreSetting("VizRandomSeed", kSeed);
        {
            DepthHost host(depth, true);
            ASSERT_TRUE(host.Running());
            if (depth == 8) host.PlayFor(kLookForFrames);
            EXPECT_TRUE(depth == 8 || host.PlayUntil([&] { return host.Frames() > 0; }));
        }
        uint32_t stored = 0;
        EXPECT_TRUE(ReadNumberSetting("VizRandomSeed", 0, &stored, "Software\\Corvane\\Visualizations"));
        EXPECT_EQ(stored == kSeed, depth == 8) << stored;
    }
    ForgetSettings();
}

}  // namespace
}  // namespace tdkviz::test
