// Pictures of several plug-ins over one song, drawn as one picture.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "player/render/SheetLayout.h"
#include "player/render/Snapshot.h"

namespace tdkplay {

struct SheetContent {
    std::string Title;
    std::vector<std::string> Names;    // of the plug-ins, a strip for each
    std::vector<std::string> Moments;  // when the pictures of a strip were taken
    PictureSize Size;                  // of one picture
};

// For one thread.
class ContactSheet {
public:
    // With all texts, and without pictures. Throws PlayerError with kUsage if it would be too large.
    explicit ContactSheet(const SheetContent& content);

    // `picture` has the content's size.
    void Place(size_t strip, size_t moment, const Picture& picture);
    Picture Finished() const;

private:
    struct ContextDeleter {
        using pointer = HDC;
        void operator()(HDC context) const { DeleteDC(context); }
    };
    struct BitmapDeleter {
        using pointer = HBITMAP;
        void operator()(HBITMAP bitmap) const { DeleteObject(bitmap); }
    };

    void MakeBitmap();
    void WriteTexts(const SheetContent& content) const;

    const SheetLayout layout_;
    const PictureSize size_;
    DWORD* pixels_ = nullptr;  // the bitmap's, top row first
    std::unique_ptr<HBITMAP, BitmapDeleter> bitmap_;
    std::unique_ptr<HDC, ContextDeleter> context_;  // ends before the bitmap that is selected into it
};

}  // namespace tdkplay
