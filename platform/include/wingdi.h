// Device contexts, bitmaps and drawing. The rules that every function shares:
//  - A device context and what is selected into it are used by one thread at a time; different ones by any
//    threads at once. Handles may be made and deleted by any thread.
//  - Right and bottom edges are outside of what is drawn, lines end before their last pixel.
//  - Texts are UTF-8; bytes that aren't valid UTF-8 are taken as Latin-1.
//  - COLORREF is 0x00BBGGRR.
// Drawing functions that Win32 declares with the windows (GetDC, FillRect, DrawTextA...) are in winuser.h.
#pragma once

#include "windef.h"

constexpr COLORREF RGB(DWORD red, DWORD green, DWORD blue) {
    return (red & 0xFF) | ((green & 0xFF) << 8) | ((blue & 0xFF) << 16);
}
constexpr BYTE GetRValue(COLORREF color) {
    return static_cast<BYTE>(color & 0xFF);
}
constexpr BYTE GetGValue(COLORREF color) {
    return static_cast<BYTE>((color >> 8) & 0xFF);
}
constexpr BYTE GetBValue(COLORREF color) {
    return static_cast<BYTE>((color >> 16) & 0xFF);
}
#define CLR_INVALID 0xFFFFFFFFu
#define GDI_ERROR 0xFFFFFFFFu

struct RGBQUAD {
    BYTE rgbBlue;
    BYTE rgbGreen;
    BYTE rgbRed;
    BYTE rgbReserved;
};
struct BITMAPINFOHEADER {
    DWORD biSize;
    LONG biWidth;
    LONG biHeight;  // above 0: bottom-up, below 0: top-down
    WORD biPlanes;
    WORD biBitCount;
    DWORD biCompression;
    DWORD biSizeImage;
    LONG biXPelsPerMeter;
    LONG biYPelsPerMeter;
    DWORD biClrUsed;
    DWORD biClrImportant;
};
struct BITMAPINFO {
    BITMAPINFOHEADER bmiHeader;
    RGBQUAD bmiColors[1];
};
using LPBITMAPINFO = BITMAPINFO*;
struct BITMAP {
    LONG bmType;
    LONG bmWidth;
    LONG bmHeight;
    LONG bmWidthBytes;
    WORD bmPlanes;
    WORD bmBitsPixel;
    LPVOID bmBits;
};
struct DIBSECTION {
    BITMAP dsBm;
    BITMAPINFOHEADER dsBmih;  // biHeight is never negative here
    DWORD dsBitfields[3];
    HANDLE dshSection;
    DWORD dsOffset;
};
struct LOGPEN {
    UINT lopnStyle;
    POINT lopnWidth;
    COLORREF lopnColor;
};
struct LOGBRUSH {
    UINT lbStyle;
    COLORREF lbColor;
    ULONG_PTR lbHatch;
};
#define LF_FACESIZE 32
struct LOGFONTA {
    LONG lfHeight;  // below 0: em square, above 0: cell, 0: a default; pixels
    LONG lfWidth;
    LONG lfEscapement;
    LONG lfOrientation;
    LONG lfWeight;
    BYTE lfItalic;
    BYTE lfUnderline;
    BYTE lfStrikeOut;
    BYTE lfCharSet;
    BYTE lfOutPrecision;
    BYTE lfClipPrecision;
    BYTE lfQuality;
    BYTE lfPitchAndFamily;
    CHAR lfFaceName[LF_FACESIZE];
};
struct TEXTMETRICA {
    LONG tmHeight;
    LONG tmAscent;
    LONG tmDescent;
    LONG tmInternalLeading;
    LONG tmExternalLeading;
    LONG tmAveCharWidth;
    LONG tmMaxCharWidth;
    LONG tmWeight;
    LONG tmOverhang;
    LONG tmDigitizedAspectX;
    LONG tmDigitizedAspectY;
    BYTE tmFirstChar;
    BYTE tmLastChar;
    BYTE tmDefaultChar;
    BYTE tmBreakChar;
    BYTE tmItalic;
    BYTE tmUnderlined;
    BYTE tmStruckOut;
    BYTE tmPitchAndFamily;
    BYTE tmCharSet;
};
struct DEVMODEA;

// Forms of device-independent bitmaps.
#define BI_RGB 0u
#define BI_BITFIELDS 3u
#define DIB_RGB_COLORS 0
#define DIB_PAL_COLORS 1

// Raster operations: the third byte is the truth table of pattern, source and destination.
#define SRCCOPY 0x00CC0020u
#define SRCPAINT 0x00EE0086u
#define SRCAND 0x008800C6u
#define SRCINVERT 0x00660046u
#define SRCERASE 0x00440328u
#define NOTSRCCOPY 0x00330008u
#define NOTSRCERASE 0x001100A6u
#define MERGECOPY 0x00C000CAu
#define MERGEPAINT 0x00BB0226u
#define PATCOPY 0x00F00021u
#define PATPAINT 0x00FB0A09u
#define PATINVERT 0x005A0049u
#define DSTINVERT 0x00550009u
#define BLACKNESS 0x00000042u
#define WHITENESS 0x00FF0062u

// SetStretchBltMode. Every mode takes one source pixel for each destination pixel, as COLORONCOLOR does.
#define BLACKONWHITE 1
#define WHITEONBLACK 2
#define COLORONCOLOR 3
#define HALFTONE 4

// GetStockObject.
#define WHITE_BRUSH 0
#define LTGRAY_BRUSH 1
#define GRAY_BRUSH 2
#define DKGRAY_BRUSH 3
#define BLACK_BRUSH 4
#define NULL_BRUSH 5
#define HOLLOW_BRUSH NULL_BRUSH
#define WHITE_PEN 6
#define BLACK_PEN 7
#define NULL_PEN 8
#define OEM_FIXED_FONT 10
#define ANSI_FIXED_FONT 11
#define ANSI_VAR_FONT 12
#define SYSTEM_FONT 13
#define DEVICE_DEFAULT_FONT 14
#define SYSTEM_FIXED_FONT 16
#define DEFAULT_GUI_FONT 17

// GetCurrentObject.
#define OBJ_PEN 1
#define OBJ_BRUSH 2
#define OBJ_FONT 6
#define OBJ_BITMAP 7

#define PS_SOLID 0
#define PS_DASH 1
#define PS_DOT 2
#define PS_DASHDOT 3
#define PS_DASHDOTDOT 4
#define PS_NULL 5
#define BS_SOLID 0
#define BS_NULL 1
#define BS_HOLLOW BS_NULL

#define TRANSPARENT 1
#define OPAQUE 2
#define TA_LEFT 0
#define TA_RIGHT 2
#define TA_CENTER 6
#define TA_TOP 0
#define TA_BOTTOM 8
#define TA_BASELINE 24

#define FW_DONTCARE 0
#define FW_NORMAL 400
#define FW_BOLD 700
#define ANSI_CHARSET 0
#define DEFAULT_CHARSET 1
#define OUT_DEFAULT_PRECIS 0
#define CLIP_DEFAULT_PRECIS 0
#define DEFAULT_QUALITY 0
#define ANTIALIASED_QUALITY 4
#define DEFAULT_PITCH 0
#define FIXED_PITCH 1
#define VARIABLE_PITCH 2
#define FF_DONTCARE 0x00
#define FF_SWISS 0x20
#define FF_MODERN 0x30
#define TMPF_FIXED_PITCH 0x01  // set for fonts of variable pitch

// Kinds of clipping area.
#define ERROR 0
#define NULLREGION 1
#define SIMPLEREGION 2

// GetDeviceCaps.
#define TECHNOLOGY 2
#define HORZSIZE 4
#define VERTSIZE 6
#define HORZRES 8
#define VERTRES 10
#define BITSPIXEL 12
#define PLANES 14
#define NUMBRUSHES 16
#define NUMPENS 18
#define NUMCOLORS 24
#define RASTERCAPS 38
#define LOGPIXELSX 88
#define LOGPIXELSY 90
#define SIZEPALETTE 104
#define NUMRESERVED 106
#define COLORRES 108
#define DT_RASDISPLAY 1
#define RC_BITBLT 0x0001
#define RC_BITMAP64 0x0008
#define RC_DI_BITMAP 0x0080
#define RC_PALETTE 0x0100
#define RC_DIBTODEV 0x0200
#define RC_STRETCHBLT 0x0800
#define RC_STRETCHDIB 0x2000

// Device contexts. Only "DISPLAY" can be opened by name. A memory context starts with a bitmap of 1 by 1
// pixels that can't be drawn on.
TDKP_API HDC CreateDCA(LPCSTR driver, LPCSTR device, LPCSTR port, const DEVMODEA* mode);
TDKP_API HDC CreateCompatibleDC(HDC dc);
TDKP_API BOOL DeleteDC(HDC dc);
TDKP_API INT GetDeviceCaps(HDC dc, INT index);
TDKP_API INT SetStretchBltMode(HDC dc, INT mode);
TDKP_API INT GetStretchBltMode(HDC dc);
TDKP_API INT SetBkMode(HDC dc, INT mode);
TDKP_API INT GetBkMode(HDC dc);
TDKP_API COLORREF SetBkColor(HDC dc, COLORREF color);
TDKP_API COLORREF GetBkColor(HDC dc);
TDKP_API COLORREF SetTextColor(HDC dc, COLORREF color);
TDKP_API COLORREF GetTextColor(HDC dc);
TDKP_API UINT SetTextAlign(HDC dc, UINT align);
TDKP_API INT IntersectClipRect(HDC dc, INT left, INT top, INT right, INT bottom);
TDKP_API BOOL GdiFlush(void);

// Objects. A bitmap is selected into one memory context at a time and can't be deleted while it is;
// other objects may be deleted at any time, and contexts that they are selected into go on using them.
TDKP_API HGDIOBJ SelectObject(HDC dc, HGDIOBJ object);
TDKP_API BOOL DeleteObject(HGDIOBJ object);
TDKP_API HGDIOBJ GetStockObject(INT index);
TDKP_API HGDIOBJ GetCurrentObject(HDC dc, UINT kind);
TDKP_API INT GetObjectA(HANDLE object, INT size, LPVOID out);
TDKP_API HBRUSH CreateSolidBrush(COLORREF color);
TDKP_API HPEN CreatePen(INT style, INT width, COLORREF color);
TDKP_API HFONT CreateFontA(INT height, INT width, INT escapement, INT orientation, INT weight, DWORD italic,
                           DWORD underline, DWORD strikeOut, DWORD charSet, DWORD outPrecision, DWORD clipPrecision,
                           DWORD quality, DWORD pitchAndFamily, LPCSTR faceName);
TDKP_API HFONT CreateFontIndirectA(const LOGFONTA* font);

// Bitmaps. CreateBitmap takes 1, 8, 16 (x1 r5 g5 b5), 24 and 32 bits; rows of `bits` are padded to 16 bits.
TDKP_API HBITMAP CreateBitmap(INT width, INT height, UINT planes, UINT bitsPerPixel, LPCVOID bits);
TDKP_API HBITMAP CreateCompatibleBitmap(HDC dc, INT width, INT height);
// 1, 8, 16, 24 or 32 bits; BI_RGB, or BI_BITFIELDS with masks of 5-5-5, 5-6-5 or 8-8-8 bits. With a file
// mapping the pixels are its bytes from `offset` (a multiple of 4) on; the mapping may be closed before the
// bitmap is deleted. Without, they start as 0.
TDKP_API HBITMAP CreateDIBSection(HDC dc, const BITMAPINFO* info, UINT usage, LPVOID* bits, HANDLE section,
                                  DWORD offset);
TDKP_API INT GetDIBits(HDC dc, HBITMAP bitmap, UINT firstLine, UINT lines, LPVOID bits, BITMAPINFO* info, UINT usage);

// Moving pixels. What the source doesn't have is left as it was in the destination.
TDKP_API BOOL BitBlt(HDC to, INT x, INT y, INT width, INT height, HDC from, INT fromX, INT fromY, DWORD operation);
// Extents below 0 run from the given pixel to the left and up; different signs mirror the picture.
TDKP_API BOOL StretchBlt(HDC to, INT x, INT y, INT width, INT height, HDC from, INT fromX, INT fromY, INT fromWidth,
                         INT fromHeight, DWORD operation);
TDKP_API COLORREF SetPixel(HDC dc, INT x, INT y, COLORREF color);
TDKP_API BOOL SetPixelV(HDC dc, INT x, INT y, COLORREF color);
TDKP_API COLORREF GetPixel(HDC dc, INT x, INT y);

// Lines and shapes.
TDKP_API BOOL MoveToEx(HDC dc, INT x, INT y, POINT* former);
TDKP_API BOOL LineTo(HDC dc, INT x, INT y);
TDKP_API BOOL Rectangle(HDC dc, INT left, INT top, INT right, INT bottom);

// Text.
TDKP_API BOOL TextOutA(HDC dc, INT x, INT y, LPCSTR text, INT length);
TDKP_API BOOL GetTextExtentPoint32A(HDC dc, LPCSTR text, INT length, SIZE* size);
TDKP_API BOOL GetTextMetricsA(HDC dc, TEXTMETRICA* metrics);
