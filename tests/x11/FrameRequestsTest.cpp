// What a playing view asks of the X server: one request for each picture.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <xcb/xcbext.h>

#include <atomic>

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

constexpr int kFirst = 5;  // the frames before make what the others use

class FrameRequestsTest : public testing::TestWithParam<bool> {
protected:
    // The add-on stores its settings when it ends.
    ~FrameRequestsTest() override { ForgetSettings(); }
};

TEST_P(FrameRequestsTest, OneForEachPicture) {
    if (!XServer::IsInstalled()) GTEST_SKIP() << "Xvfb is not installed";
    const XServer server(24);
    ASSERT_TRUE(server.Running());
    server.Use();
    TestHost::InstallPlugins({"Probe.tkv"});
    StoreSetting("VizUseDD", GetParam());
    TestHost host;
    ASSERT_TRUE(host.MakeView("Probe.tkv", 320, 240));
    // Counted where each frame begins, on the thread that asks: what is under way doesn't matter.
    std::atomic<int> frames{0}, before{0}, asked{0};
    const auto watch = WatchProbe([&](const ProbeFrame&) {
        if (++frames == kFirst) before = requests.load();
        asked = requests - before;
    });
    host.StartDevice(120, 441);
    host.SetState(kEngineStatePlaying);
    constexpr int kWatched = 20;
    EXPECT_TRUE(host.PlayUntil([&] { return frames >= kFirst + kWatched; }));
    EXPECT_EQ(Counts().directDraw > 0, GetParam());
    host.Shutdown();
    EXPECT_EQ(asked.load(), frames - kFirst);
}

INSTANTIATE_TEST_SUITE_P(PlainAndDirectDraw, FrameRequestsTest, testing::Bool());

}  // namespace
}  // namespace tdkviz::test
