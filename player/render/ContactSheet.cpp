#include "player/render/ContactSheet.h"

#include <algorithm>

#include "player/base/ExitCode.h"

namespace tdkplay {
namespace {

constexpr COLORREF kBackground = RGB(24, 24, 29);
constexpr COLORREF kBright = RGB(238, 238, 242);
constexpr COLORREF kDim = RGB(140, 140, 152);
constexpr WORD kColourDepth = 32;
constexpr int64_t kMostPixels = 100'000'000;
constexpr char kTypeface[] = "DejaVu Sans";
constexpr int kTextGap = 12;  // pixels between title and moments

// A typeface and a colour in force as long as the object lives.
class Lettering {
public:
    Lettering(HDC context, int height, int weight, COLORREF colour)
        : context_(context),
          font_(CreateFontA(-height, 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                            CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, kTypeface)),
          former_(SelectObject(context, font_)) {
        SetTextColor(context, colour);
    }
    ~Lettering() {
        SelectObject(context_, former_);
        DeleteObject(font_);
    }
    Lettering(const Lettering&) = delete;
    Lettering& operator=(const Lettering&) = delete;

    void Write(const std::string& text, RECT place, UINT alignment) const {
        DrawTextA(context_, text.c_str(), static_cast<int>(text.size()), &place,
                  DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS | alignment);
    }
    int WidthOf(const std::string& text) const {
        SIZE extent = {};
        GetTextExtentPoint32A(context_, text.c_str(), static_cast<int>(text.size()), &extent);
        return extent.cx;
    }

private:
    const HDC context_;
    const HFONT font_;
    const HGDIOBJ former_;
};

}  // namespace

ContactSheet::ContactSheet(const SheetContent& content)
    : layout_(content.Size, content.Names.size(), content.Moments.size()), size_(layout_.Sheet()) {
    MakeBitmap();
    WriteTexts(content);
}

void ContactSheet::MakeBitmap() {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof(info.bmiHeader);
    info.bmiHeader.biWidth = size_.Width;
    info.bmiHeader.biHeight = -size_.Height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = kColourDepth;
    info.bmiHeader.biCompression = BI_RGB;
    void* pixels = nullptr;
    if (int64_t{size_.Width} * size_.Height <= kMostPixels)
        bitmap_.reset(CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pixels, nullptr, 0));
    if (!bitmap_) throw PlayerError(ExitCode::kUsage, "--size: too large for a sheet of " + size_.Text() + " pixels");
    pixels_ = static_cast<DWORD*>(pixels);
    context_.reset(CreateCompatibleDC(nullptr));
    SelectObject(context_.get(), bitmap_.get());
    const RECT all = {0, 0, size_.Width, size_.Height};
    const HBRUSH brush = CreateSolidBrush(kBackground);
    FillRect(context_.get(), &all, brush);
    DeleteObject(brush);
}

void ContactSheet::WriteTexts(const SheetContent& content) const {
    const HDC context = context_.get();
    SetBkMode(context, TRANSPARENT);
    std::string moments;
    for (const std::string& moment : content.Moments) moments += (moments.empty() ? "" : ", ") + moment;
    RECT title = layout_.TitlePlace();
    {
        const Lettering lettering(context, layout_.CaptionHeight(), FW_NORMAL, kDim);
        lettering.Write(moments, title, DT_RIGHT);
        title.right -= lettering.WidthOf(moments) + kTextGap;
    }
    Lettering(context, layout_.TitleHeight(), FW_BOLD, kBright).Write(content.Title, title, DT_LEFT);
    const Lettering lettering(context, layout_.CaptionHeight(), FW_BOLD, kBright);
    for (size_t strip = 0; strip < content.Names.size(); ++strip)
        lettering.Write(content.Names[strip], layout_.CaptionPlace(strip), DT_LEFT);
}

void ContactSheet::Place(size_t strip, size_t moment, const Picture& picture) {
    const RECT place = layout_.PicturePlace(strip, moment);
    GdiFlush();
    for (int row = 0; row < picture.Height; ++row) {
        const auto from = picture.Pixels.begin() + static_cast<ptrdiff_t>(row) * picture.Width;
        std::copy_n(from, picture.Width, pixels_ + static_cast<ptrdiff_t>(place.top + row) * size_.Width + place.left);
    }
}

Picture ContactSheet::Finished() const {
    GdiFlush();
    const auto count = static_cast<size_t>(size_.Width) * static_cast<size_t>(size_.Height);
    return {size_.Width, size_.Height, std::vector<DWORD>(pixels_, pixels_ + count)};
}

}  // namespace tdkplay
