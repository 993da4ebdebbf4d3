// Pictures of several plug-ins over one song, drawn as one picture.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "player/render/SheetLayout.h"
#include "player/render/Snapshot.h"
#include "player/window/Canvas.h"

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
    void WriteTexts(const SheetContent& content);

    const SheetLayout layout_;
    std::unique_ptr<Canvas> canvas_;
};

}  // namespace tdkplay
