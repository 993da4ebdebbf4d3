// The menu of a right click.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tdkplay {

// What the menu shows.
struct MenuState {
    std::vector<std::string> Plugins;  // their names
    std::optional<size_t> Shown;       // which one of them is on the screen
    bool Effects = false;
    bool Randomize = false;
    uint32_t FrameRate = 0;  // a second
    bool IsFullScreen = false;
    bool IsOnTop = false;
};

struct MenuChoice {
    enum class Kind {
        kNothing,
        kPlugin,  // `Number` counts from 0
        kEffects,
        kRandomize,
        kFrameRate,  // `Number` a second
        kSettings,
        kFullScreen,
        kOnTop,
        kNextPiece,
        kPreviousPiece,
        kQuit,
    };
    Kind What = Kind::kNothing;
    size_t Number = 0;
};

// Shows it at this place on the screen and waits for the choice, while messages of the thread are served. `window`
// belongs to the calling thread.
MenuChoice ShowPlayerMenu(HWND window, POINT place, const MenuState& state);

}  // namespace tdkplay
