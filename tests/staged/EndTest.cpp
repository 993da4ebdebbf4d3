// Ends that a host brings about in the wrong order.
#include <gtest/gtest.h>

#include <vector>

#include "tests/staged/NothingLeft.h"
#include "tests/staged/TestHost.h"
#include "tests/support/TestObjects.h"

namespace tdkviz::test {
namespace {

TEST(End, ShutdownTakesDownViewsThatTheHostForgot) {
    TestHost::InstallPlugins({"Probe.tkv", "WindowMode.tkv"});
    const NothingLeft nothingLeft;
    TestHost host;
    ASSERT_TRUE(host.MakeView("Probe.tkv", 320, 240));
    IMPAVizWindow* held = host.MakeView("WindowMode.tkv", 200, 100);
    ASSERT_TRUE(held);
    IMPAVizWindow* ended = host.MakeView("Probe.tkv", 100, 100);
    ASSERT_TRUE(ended);
    held->AddRef();
    ended->AddRef();
    host.StartDevice(100, 441);
    host.SetState(kEngineStatePlaying);
    host.Advance(300);
    EXPECT_EQ(host.Manager()->DestroyVizWindow(ended), S_OK);
    host.ForgetViews();
    const HMODULE library = LoadLibraryA(STAGE_DIR "/tdkviz.so");
    host.Shutdown();
    // A view that the host still holds has nothing to show, and says so.
    for (IMPAVizWindow* view : {held, ended}) {
        char path[MAX_PATH];
        EXPECT_EQ(view->GetCurrentPlugin(path, sizeof path), E_FAIL);
        EXPECT_EQ(view->SelectPlugin(TestHost::PluginPath("Probe.tkv").c_str()), E_FAIL);
        EXPECT_EQ(view->Show(100, 100), E_FAIL);
        EXPECT_EQ(view->Release(), 0u);
    }
    FreeLibrary(library);
}

TEST(End, AudioAfterShutdownIsDropped) {
    TestHost::InstallPlugins({"Probe.tkv"});
    TestHost host;
    ASSERT_TRUE(host.MakeView("Probe.tkv", 64, 48));
    host.StartDevice(100, 441);
    IKVAAudioHook* hook = host.Hook();
    const HMODULE library = LoadLibraryA(STAGE_DIR "/tdkviz.so");
    host.Shutdown();
    KVAAudioFormat format = {2, 16, 48000, 4096, 0};
    EXPECT_EQ(hook->OnAudioFormat(&format), S_OK);
    std::vector<int16_t> audio(4096);
    FakeBuffer buffer(audio.data(), audio.size() * sizeof(int16_t));
    KVAAudioData data = {&buffer};
    EXPECT_EQ(hook->OnAudioData(&data, &data), S_OK);
    EXPECT_EQ(buffer.References, 0u);
    FreeLibrary(library);
}

}  // namespace
}  // namespace tdkviz::test
