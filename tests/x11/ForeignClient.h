// Another program on the same X server: owner of windows that the layer didn't make, a person's mouse and
// keyboard, and an eye on the screen.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// Frees what the library has given.
template <typename T>
auto Own(T* reply) {
    return std::unique_ptr<T, decltype(&std::free)>(reply, &std::free);
}

struct ScreenColor {
    int red = -1, green = -1, blue = -1;

    int DistanceTo(const ScreenColor& other) const;  // largest of the three differences
};

class ForeignClient {
public:
    explicit ForeignClient(const std::string& display);
    ~ForeignClient();
    ForeignClient(const ForeignClient&) = delete;
    ForeignClient& operator=(const ForeignClient&) = delete;

    xcb_window_t Root() const { return screen_->root; }

    // Shown, above all others, painted white. No window manager is asked.
    xcb_window_t MakeWindow(int x, int y, int width, int height);
    void Move(xcb_window_t window, int x, int y);
    void Resize(xcb_window_t window, int width, int height);
    void Hide(xcb_window_t window);
    void Unhide(xcb_window_t window);
    void Destroy(xcb_window_t window);
    // What a window manager sends when its close button is pressed.
    void AskToClose(xcb_window_t window);
    // From now on, until this client ends, the server seems to have a window manager. It does nothing.
    void PretendToManage();
    // Waits for a request to such a manager to change a window's state: "+" or "-" and the state's name.
    // Empty if none comes.
    std::string WaitForStateRequest();
    // Takes every free cell of the default colormap.
    void ExhaustColors();

    // What is seen there. -1 outside of the screen. Where pixels are indices, `colormap` tells their colours;
    // 0 stands for the one that the screen shows.
    ScreenColor ColorAt(int x, int y, xcb_colormap_t colormap = 0);
    xcb_colormap_t ColormapOf(xcb_window_t window);
    // Waits until the screen shows `color` there, give or take `tolerance`. Gives what it shows in the end.
    ScreenColor WaitForColor(int x, int y, const ScreenColor& color, int tolerance);

    std::string TextProperty(xcb_window_t window, const char* name);
    // A property of one number; 0 if there is none.
    uint32_t NumberProperty(xcb_window_t window, const char* name);
    std::vector<xcb_window_t> ChildrenOf(xcb_window_t window);
    // Its upper left corner on the screen, as x and y.
    std::pair<int, int> CornerOf(xcb_window_t window);
    // Width and height; of a window that isn't there or isn't shown, 0.
    std::pair<int, int> SizeOf(xcb_window_t window);

    // Who has the keyboard.
    xcb_window_t Focus();
    void MoveMouse(int x, int y);
    void Button(int number, bool down);
    void Key(uint32_t keysym, bool down);

    // From now on the server's screen saver comes after so many seconds without input.
    void UseScreenSaver(int seconds);
    bool IsScreenSaverOn();

private:
    xcb_atom_t Atom(const char* name);
    void FakeInput(uint8_t type, uint8_t detail, int x, int y);
    uint8_t KeycodeOf(uint32_t keysym);
    const xcb_visualtype_t* RootVisual() const;
    void Wait();

    xcb_connection_t* const connection_;
    xcb_screen_t* screen_ = nullptr;
};
