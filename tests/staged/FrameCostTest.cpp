// What a steady frame takes from the machine: no memory, neither where frames are made nor where audio comes in.
#include <gtest/gtest.h>
#include <tdkplatform.h>

#include <atomic>
#include <cstddef>
#include <string>
#include <vector>

#include "tests/staged/TestHost.h"

// A sanitizer has an allocator of its own.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

namespace {

std::atomic<bool> isCounting{false};
std::atomic<int> allocations{0};
thread_local bool isSpared = false;  // of the host's own thread, outside the add-on

void Count() {
    if (isCounting.load(std::memory_order_relaxed) && !isSpared) ++allocations;
}

}  // namespace

extern "C" {

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
void* __libc_memalign(size_t alignment, size_t size);

// Found by the add-on, the layer and the plug-ins before those of the C library; operator new comes here too.
void* malloc(size_t size) {
    Count();
    return __libc_malloc(size);
}
void* calloc(size_t count, size_t size) {
    Count();
    return __libc_calloc(count, size);
}
void* realloc(void* memory, size_t size) {
    Count();
    return __libc_realloc(memory, size);
}
void* aligned_alloc(size_t alignment, size_t size) {
    Count();
    return __libc_memalign(alignment, size);
}
}

namespace tdkviz::test {
namespace {

constexpr int kFrames = 100;
constexpr uint32_t kFramePeriod = 50;  // ms, at the rate that stands without a setting
constexpr uint32_t kDeliveryFrames = 882;

struct FrameCase {
    const char* name;
    DWORD directDraw;
    DWORD randomize;
    int depth;
};

class FrameCostTest : public testing::TestWithParam<FrameCase> {
protected:
    FrameCostTest() { TestHost::InstallPlugins({"Probe.tkv", "Oscilloscope.tkv"}); }
    ~FrameCostTest() override {
        ForgetSettings();
        TdkpChangeDisplayDepth(32);
    }
};

TEST_P(FrameCostTest, SteadyFramesAllocateNothing) {
    const FrameCase& use = GetParam();
    StoreSetting("VizUseDD", use.directDraw);
    StoreSetting("VizOn", 1);
    StoreSetting("VizRandom", use.randomize);
    TdkpChangeDisplayDepth(use.depth);
    TestHost host(STAGE_DIR "/Codecs");
    ASSERT_TRUE(host.MakeView("Oscilloscope.tkv", 640, 480));
    ASSERT_TRUE(host.MakeView("Probe.tkv", 322, 243));
    std::atomic<int> frames{0};
    const auto watch = WatchProbe([&](const ProbeFrame&) { ++frames; });
    host.StartDevice(200, kDeliveryFrames);
    host.SetState(kEngineStatePlaying);
    host.Advance(10 * kFramePeriod);  // the first ones make what the others use
    isSpared = true;
    frames = allocations = 0;
    isCounting = true;
    host.Advance(kFrames * kFramePeriod);
    EXPECT_GE(frames, kFrames - 1);
    EXPECT_EQ(allocations.exchange(0), 0);

    std::vector<int16_t> audio(2 * kDeliveryFrames);
    FakeBuffer buffer(audio.data(), audio.size() * sizeof(int16_t));
    KVAAudioData data = {&buffer};
    isSpared = false;
    for (int delivery = 0; delivery < kFrames; ++delivery) host.Hook()->OnAudioData(&data, &data);
    isCounting = false;
    EXPECT_EQ(allocations, 0) << "audio";
}

INSTANTIATE_TEST_SUITE_P(Ways, FrameCostTest,
                         testing::Values(FrameCase{"Plain", 0, 0, 32}, FrameCase{"Random", 0, 1, 32},
                                         FrameCase{"Converted", 0, 0, 16}, FrameCase{"DirectDraw", 1, 0, 32},
                                         FrameCase{"DirectDrawConverted", 1, 0, 16}),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace tdkviz::test

#endif
