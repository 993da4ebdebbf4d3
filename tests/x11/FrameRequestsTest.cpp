// What a playing view asks of the X server: one request for each picture.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <xcb/xcbext.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "tests/staged/TestHost.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/x11/XServer.h"

namespace {

std::atomic<int> requests{0};

}  // namespace

// Found before the library's own, through which every request goes.
TDKP_API unsigned int xcb_send_request(xcb_connection_t* connection, int flags, iovec* parts,
                                       const xcb_protocol_request_t* request) {
    static const auto original = reinterpret_cast<decltype(&xcb_send_request)>(dlsym(RTLD_NEXT, "xcb_send_request"));
    ++requests;
    return original(connection, flags, parts, request);
}

namespace tdkviz::test {
namespace {

using std::chrono::milliseconds;

constexpr char kKey[] = "Software\\Corvane\\Visualizations";

void Play(TestHost& host, milliseconds duration) {
    const auto end = std::chrono::steady_clock::now() + duration;
    while (std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(milliseconds(10));
        host.heard += kRate / 100;
        host.FeedDevice();
        host.ServeMessages();
    }
}

void UseDirectDraw(DWORD use) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, kKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr), 0);
    EXPECT_EQ(RegSetValueExA(key, "VizUseDD", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&use), sizeof(use)), 0);
    RegCloseKey(key);
}

class FrameRequestsTest : public testing::TestWithParam<bool> {
protected:
    // The add-on stores its settings when it ends.
    ~FrameRequestsTest() override { RegDeleteTreeA(HKEY_CURRENT_USER, kKey); }
};

TEST_P(FrameRequestsTest, OneForEachPicture) {
    if (!XServer::IsInstalled()) GTEST_SKIP() << "Xvfb is not installed";
    const XServer server(24);
    ASSERT_TRUE(server.Running());
    server.Use();
    TestHost::InstallPlugins({"Probe.tkv"});
    UseDirectDraw(GetParam());
    TestHost host;
    ASSERT_TRUE(host.MakeView("Probe.tkv", 320, 240));
    std::atomic<int> frames{0};
    const auto watch = WatchProbe([&](const ProbeFrame&) { ++frames; });
    host.StartDevice(120, 441);
    host.SetState(kEngineStatePlaying);
    Play(host, milliseconds(500));
    EXPECT_EQ(Counts().directDraw > 0, GetParam());
    frames = requests = 0;
    Play(host, milliseconds(1500));
    const int painted = frames, asked = requests;
    EXPECT_GE(painted, 10);
    EXPECT_NEAR(asked, painted, 1);  // a frame is under way at either end
}

INSTANTIATE_TEST_SUITE_P(PlainAndDirectDraw, FrameRequestsTest, testing::Bool());

}  // namespace
}  // namespace tdkviz::test
