#include "player/render/ContactSheet.h"

#include <algorithm>

#include "player/base/ExitCode.h"
#include "player/base/Joined.h"

namespace tdkplay {
namespace {

constexpr COLORREF kBackground = RGB(24, 24, 29);
constexpr COLORREF kBright = RGB(238, 238, 242);
constexpr COLORREF kDim = RGB(140, 140, 152);
constexpr int64_t kMostPixels = 100'000'000;
constexpr char kTypeface[] = "DejaVu Sans";
constexpr int kTextGap = 12;  // pixels between title and moments

// A typeface and a colour for texts, as long as the object lives.
class Lettering {
public:
    Lettering(Canvas& canvas, int height, int weight, COLORREF colour)
        : canvas_(canvas),
          colour_(colour),
          font_(CreateFontA(-height, 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                            CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, kTypeface)),
          former_(canvas.SetFont(font_)) {}
    ~Lettering() {
        canvas_.SetFont(former_);
        DeleteObject(font_);
    }
    Lettering(const Lettering&) = delete;
    Lettering& operator=(const Lettering&) = delete;

    void Write(const std::string& text, const RECT& place, UINT alignment) const {
        canvas_.Text(text, place, colour_, alignment);
    }

private:
    Canvas& canvas_;
    const COLORREF colour_;
    const HFONT font_;
    const HGDIOBJ former_;
};

}  // namespace

ContactSheet::ContactSheet(const SheetContent& content)
    : layout_(content.Size, content.Names.size(), content.Moments.size()) {
    const PictureSize size = layout_.Sheet();
    if (int64_t{size.Width} * size.Height <= kMostPixels) canvas_ = std::make_unique<Canvas>(size.Width, size.Height);
    if (!canvas_ || !canvas_->Pixels())
        throw PlayerError(ExitCode::kUsage, "--size: too large for a sheet of " + size.Text() + " pixels");
    canvas_->Fill({0, 0, size.Width, size.Height}, kBackground);
    WriteTexts(content);
}

void ContactSheet::WriteTexts(const SheetContent& content) {
    const std::string moments = Joined(content.Moments, ", ");
    RECT title = layout_.TitlePlace();
    {
        const Lettering lettering(*canvas_, layout_.CaptionHeight(), FW_NORMAL, kDim);
        lettering.Write(moments, title, DT_RIGHT);
        title.right -= canvas_->TextWidth(moments) + kTextGap;
    }
    Lettering(*canvas_, layout_.TitleHeight(), FW_BOLD, kBright).Write(content.Title, title, DT_LEFT);
    const Lettering lettering(*canvas_, layout_.CaptionHeight(), FW_BOLD, kBright);
    for (size_t strip = 0; strip < content.Names.size(); ++strip)
        lettering.Write(content.Names[strip], layout_.CaptionPlace(strip), DT_LEFT);
}

void ContactSheet::Place(size_t strip, size_t moment, const Picture& picture) {
    const RECT place = layout_.PicturePlace(strip, moment);
    DWORD* const first = canvas_->Pixels() + static_cast<ptrdiff_t>(place.top) * canvas_->Width() + place.left;
    for (ptrdiff_t row = 0; row < picture.Height; ++row)
        std::copy_n(picture.Pixels.begin() + row * picture.Width, picture.Width, first + row * canvas_->Width());
}

Picture ContactSheet::Finished() const {
    const DWORD* const pixels = canvas_->Pixels();
    const auto count = static_cast<size_t>(canvas_->Width()) * static_cast<size_t>(canvas_->Height());
    return {canvas_->Width(), canvas_->Height(), std::vector<DWORD>(pixels, pixels + count)};
}

}  // namespace tdkplay
