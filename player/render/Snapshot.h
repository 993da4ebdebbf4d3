// A picture of a window, as a person would see it, and as a PNG file.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace tdkplay {

struct Picture {
    int Width = 0;
    int Height = 0;
    std::vector<DWORD> Pixels;  // 0x00RRGGBB, top row first
};

// The client area of the window with its children. Empty if there is no such window.
Picture ReadWindow(HWND window);
// The same into a picture whose memory is used again.
void ReadWindow(HWND window, Picture& picture);

// The same pixels give the same bytes. Throws PlayerError with kCannotWrite.
void WritePng(const Picture& picture, const std::string& path);

}  // namespace tdkplay
