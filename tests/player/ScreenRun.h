// A program on an X server of its own, and a person in front of it.
#pragma once

#include <optional>

#include "tests/player/PlayerRun.h"
#include "tests/x11/ForeignClient.h"
#include "tests/x11/XServer.h"

namespace tdkplay {

class ScreenRun : public PlayerRun {
protected:
    void SetUp() override {
        PlayerRun::SetUp();
        if (IsSkipped()) return;
        if (!XServer::IsInstalled()) GTEST_SKIP() << "Xvfb is not installed";
        server_.emplace(24);
        ASSERT_TRUE(server_->Running());
        display_ = server_->Name();
        person_.emplace(display_);
    }
    // The window on the screen whose title has this in it, or 0.
    xcb_window_t FindWindow(const std::string& text) {
        for (const xcb_window_t window : person_->ChildrenOf(person_->Root()))
            if (person_->TextProperty(window, "WM_NAME").find(text) != std::string::npos) return window;
        return 0;
    }
    // Soon at the latest.
    bool Shows(const std::string& text) {
        return WaitUntil([&] { return FindWindow(text) != 0; });
    }
    void Press(uint32_t keysym) {
        person_->Key(keysym, true);
        person_->Key(keysym, false);
    }

    std::optional<XServer> server_;
    std::optional<ForeignClient> person_;
};

}  // namespace tdkplay
