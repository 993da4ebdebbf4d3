// DirectDraw: the order in which it wants to be called, surfaces and their locks, and blits to a window.
#include <gtest/gtest.h>
#include <windows.h>

#include <objbase.h>

#include <ddraw.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/platform/gdiSupport.h"
#include "tests/support/Picture.h"

namespace {

using tdkviz::test::Counts;
using tdkviz::test::Picture;

constexpr GUID kClass = {0xD7B70EE0, 0x4340, 0x11CF, {0xB0, 0x63, 0x00, 0x20, 0xAF, 0xC2, 0xCD, 0x35}};
constexpr GUID kIDirectDraw = {0x6C14DB80, 0xA733, 0x11CE, {0xA5, 0x21, 0x00, 0x20, 0xAF, 0x0B, 0xE5, 0x60}};

DDSURFACEDESC MakeDescription(DWORD flags, DWORD caps, DWORD width = 0, DWORD height = 0) {
    DDSURFACEDESC description = {};
    description.dwSize = sizeof(description);
    description.dwFlags = flags;
    description.dwWidth = width;
    description.dwHeight = height;
    description.ddsCaps.dwCaps = caps;
    return description;
}
constexpr DWORD kSized = DDSD_CAPS | DDSD_WIDTH | DDSD_HEIGHT;

// COM on this thread, a class for windows, and a DirectDraw object with whatever a test wants of it.
class DirectDrawTest : public testing::Test {
protected:
    static constexpr int kX = 30, kY = 20, kWidth = 40, kHeight = 24;

    void SetUp() override { Start(32); }
    void Start(int depth) {
        ASSERT_TRUE(TdkpUseMemoryDisplay(640, 480, depth));
        objects_ = Counts().directDraw;
        ASSERT_EQ(CoInitialize(nullptr), S_OK);
        WNDCLASSA info = {};
        info.lpfnWndProc = DefWindowProcA;
        info.lpszClassName = "ddrawTest";
        RegisterClassA(&info);
        parent_ = CreateWindowExA(0, "ddrawTest", "", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 10, 5, 200, 100, nullptr,
                                  nullptr, nullptr, nullptr);
        window_ = CreateWindowExA(0, "ddrawTest", "", WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, kX - 10, kY - 5, kWidth,
                                  kHeight, parent_, nullptr, nullptr, nullptr);
    }
    void TearDown() override {
        for (IUnknown* object : std::vector<IUnknown*>{surface_, primary_, draw_}) {
            EXPECT_EQ(object != nullptr ? object->Release() : 0, 0u);
        }
        EXPECT_EQ(Counts().directDraw, objects_);
        DestroyWindow(parent_);
        UnregisterClassA("ddrawTest", nullptr);
        CoUninitialize();
        TdkpUseMemoryDisplay(1920, 1080, 32);
    }

    // A memory surface whose pixels all differ, and the primary with a clipper on the window.
    void CreateSurfaces(DWORD width, DWORD height) {
        ASSERT_EQ(CoCreateInstance(kClass, nullptr, CLSCTX_ALL, kIDirectDraw, reinterpret_cast<void**>(&draw_)), S_OK);
        ASSERT_EQ(draw_->Initialize(nullptr), DD_OK);
        ASSERT_EQ(draw_->SetCooperativeLevel(window_, DDSCL_NORMAL), DD_OK);
        DDSURFACEDESC description = MakeDescription(DDSD_CAPS, DDSCAPS_PRIMARYSURFACE);
        ASSERT_EQ(draw_->CreateSurface(&description, &primary_, nullptr), DD_OK);
        IDirectDrawClipper* clipper = nullptr;
        ASSERT_EQ(draw_->CreateClipper(0, &clipper, nullptr), DD_OK);
        EXPECT_EQ(clipper->SetHWnd(0, window_), DD_OK);
        EXPECT_EQ(primary_->SetClipper(clipper), DD_OK);
        EXPECT_EQ(clipper->Release(), 1u) << "the primary holds it";
        description = MakeDescription(kSized, DDSCAPS_SYSTEMMEMORY, width, height);
        ASSERT_EQ(draw_->CreateSurface(&description, &surface_, nullptr), DD_OK);
        locked_ = MakeDescription(0, 0);
        ASSERT_EQ(surface_->Lock(nullptr, &locked_, DDLOCK_WAIT, nullptr), DD_OK);
        const size_t bytes = locked_.ddpfPixelFormat.dwRGBBitCount / 8;
        for (DWORD y = 0; y < height; ++y) {
            for (DWORD x = 0; x < width; ++x) {
                const uint32_t raw = RawAt(x, y);
                std::memcpy(static_cast<char*>(locked_.lpSurface) + static_cast<LONG>(y) * locked_.lPitch + x * bytes,
                            &raw, bytes);
            }
        }
        EXPECT_EQ(surface_->Unlock(nullptr), DD_OK);
    }
    static uint32_t RawAt(DWORD x, DWORD y) { return (y + 1) * 16 + x; }

    HRESULT Blt(RECT to, DWORD effects) {
        DDBLTFX fx = {};
        fx.dwSize = sizeof(fx);
        fx.dwDDFX = effects;
        return primary_->Blt(&to, surface_, nullptr, DDBLT_DDFX, &fx);
    }
    HRESULT Fill(RECT to, DWORD raw) {
        DDBLTFX fx = {};
        fx.dwSize = sizeof(fx);
        fx.dwFillColor = raw;
        return primary_->Blt(&to, nullptr, nullptr, DDBLT_COLORFILL, &fx);
    }

    HWND parent_ = nullptr, window_ = nullptr;
    IDirectDraw* draw_ = nullptr;
    IDirectDrawSurface* primary_ = nullptr;
    IDirectDrawSurface* surface_ = nullptr;
    DDSURFACEDESC locked_ = {};
    int32_t objects_ = 0;
};

class DirectDrawBlitTest : public DirectDrawTest, public testing::WithParamInterface<int> {
protected:
    void SetUp() override { Start(GetParam()); }
};

TEST_F(DirectDrawTest, SurfacesAreLockedOnceAndLostUntilTheyAreRestored) {
    TdkpPadDirectDrawRows(12);
    CreateSurfaces(9, 5);
    TdkpPadDirectDrawRows(0);
    EXPECT_EQ(locked_.lPitch, 9 * 4 + 12);
    EXPECT_EQ(locked_.dwWidth, 9u);
    EXPECT_EQ(locked_.dwHeight, 5u);
    EXPECT_EQ(locked_.ddpfPixelFormat.dwRBitMask, 0xFF0000u);
    const RECT place = {kX, kY, kX + 9, kY + 5};
    EXPECT_EQ(surface_->Unlock(nullptr), DDERR_NOTLOCKED);
    EXPECT_EQ(surface_->Lock(nullptr, &locked_, DDLOCK_WAIT, nullptr), DD_OK);
    EXPECT_EQ(surface_->Lock(nullptr, &locked_, DDLOCK_WAIT, nullptr), DDERR_SURFACEBUSY);
    EXPECT_EQ(Blt(place, 0), DDERR_SURFACEBUSY);
    EXPECT_EQ(surface_->Unlock(nullptr), DD_OK);
    EXPECT_EQ(primary_->Lock(nullptr, &locked_, DDLOCK_WAIT, nullptr), DDERR_CANTLOCKSURFACE);
    TdkpLoseDirectDrawSurfaces();
    for (IDirectDrawSurface* lost : {primary_, surface_}) {
        EXPECT_EQ(Blt(place, 0), DDERR_SURFACELOST) << "either one";
        EXPECT_EQ(lost->Restore(), DD_OK);
    }
    EXPECT_EQ(Blt(place, 0), DD_OK);
    for (const DWORD side : {0u, 0x8000u, 0xFFFFFFFFu}) {
        DDSURFACEDESC odd = MakeDescription(kSized, DDSCAPS_SYSTEMMEMORY, side, 4);
        IDirectDrawSurface* none = nullptr;
        EXPECT_EQ(draw_->CreateSurface(&odd, &none, nullptr), DDERR_INVALIDPARAMS) << side;
    }
}

TEST_P(DirectDrawBlitTest, StretchesAndMirrorsInsideTheWindow) {
    constexpr int kFrom = 8;
    CreateSurfaces(kFrom, kFrom);
    // Tells what the window shows of raw pixels.
    const gditest::Surface colors(GetParam() == 32   ? gditest::k32
                                  : GetParam() == 16 ? gditest::k565
                                                     : gditest::k555,
                                  1, 1);
    const struct {
        RECT to;  // in the window
        DWORD effects;
    } cases[] = {
        {{0, 0, kFrom, kFrom}, 0},
        {{0, 0, kWidth, kHeight}, DDBLTFX_MIRRORUPDOWN},
        {{3, 2, 3 + 19, 2 + 5}, DDBLTFX_MIRRORUPDOWN},
        {{-10, -7, kWidth + 13, kHeight + 9}, DDBLTFX_MIRRORUPDOWN},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.effects);
        EXPECT_EQ(Fill({0, 0, 640, 480}, 0), DD_OK);
        EXPECT_EQ(Blt({kX + c.to.left, kY + c.to.top, kX + c.to.right, kY + c.to.bottom}, c.effects), DD_OK);
        const Picture picture(window_);
        const int width = c.to.right - c.to.left, height = c.to.bottom - c.to.top;
        int wrong = 0;
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                const int fromX = (x - c.to.left) * kFrom / width;
                int fromY = (y - c.to.top) * kFrom / height;
                const bool inside = x >= c.to.left && x < c.to.right && y >= c.to.top && y < c.to.bottom;
                if ((c.effects & DDBLTFX_MIRRORUPDOWN) != 0) fromY = kFrom - 1 - fromY;
                const uint32_t raw = inside ? RawAt(static_cast<DWORD>(fromX), static_cast<DWORD>(fromY)) : uint32_t{0};
                wrong += picture.At(x, y) != colors.ColorOf(raw);
            }
        }
        EXPECT_EQ(wrong, 0);
    }
    EXPECT_EQ(Picture(parent_).At(kX - 10 - 1, kY - 5 + 3), 0u) << "nothing beside the window";
}

INSTANTIATE_TEST_SUITE_P(Depths, DirectDrawBlitTest, testing::Values(32, 16, 15),
                         [](const auto& one) { return "Depth" + std::to_string(one.param); });

TEST_F(DirectDrawTest, LeavesChildWindowsAndOtherFormatsAlone) {
    CreateSurfaces(4, 4);
    const HWND child =
        CreateWindowExA(0, "ddrawTest", "", WS_CHILD | WS_VISIBLE, 10, 6, 10, 10, window_, nullptr, nullptr, nullptr);
    EXPECT_EQ(Fill({kX, kY, kX + kWidth, kY + kHeight}, 0x00336699), DD_OK);
    const Picture picture(window_);
    EXPECT_EQ(picture.At(9, 6), 0x336699u);
    EXPECT_EQ(picture.At(10, 6), 0u);
    EXPECT_EQ(picture.At(20, 16), 0x336699u);
    DestroyWindow(child);
    EXPECT_EQ(Fill({kX, kY, kX, kY + 5}, 0), DDERR_INVALIDRECT);
    // The window goes, and with the last one the display: the next one has another depth.
    DestroyWindow(parent_);
    EXPECT_EQ(Fill({kX, kY, kX + 5, kY + 5}, 0), DD_OK) << "nobody sees it";
    TdkpUseMemoryDisplay(640, 480, 16);
    EXPECT_EQ(surface_->Lock(nullptr, &locked_, DDLOCK_WAIT, nullptr), DDERR_SURFACELOST);
    EXPECT_EQ(surface_->Restore(), DDERR_WRONGMODE);
}

}  // namespace
