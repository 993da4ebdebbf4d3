// The base types, handles and constants of the Win32 interface, with their 64-bit sizes.
#pragma once

#include <stddef.h>
#include <stdint.h>

using BOOL = int32_t;
using BYTE = uint8_t;
using CHAR = char;
using UCHAR = unsigned char;
using WORD = uint16_t;
using SHORT = int16_t;
using USHORT = uint16_t;
using INT = int32_t;
using UINT = uint32_t;
using LONG = int32_t;
using ULONG = uint32_t;
using DWORD = uint32_t;
using LONGLONG = long long;
using ULONGLONG = unsigned long long;
using DWORD64 = uint64_t;
using INT_PTR = intptr_t;
using UINT_PTR = uintptr_t;
using LONG_PTR = intptr_t;
using ULONG_PTR = uintptr_t;
using DWORD_PTR = uintptr_t;
using SIZE_T = size_t;
using HRESULT = int32_t;
using WPARAM = UINT_PTR;
using LPARAM = LONG_PTR;
using LRESULT = LONG_PTR;
using ATOM = WORD;
using COLORREF = DWORD;

using VOID = void;
using PVOID = void*;
using LPVOID = void*;
using LPCVOID = const void*;
using LPSTR = char*;
using LPCSTR = const char*;
using LPBYTE = BYTE*;
using LPDWORD = DWORD*;
using LPLONG = LONG*;
using PHKEY = struct HKEY__**;

// Handles are opaque pointers. A window handle carries the window's id on the display server; it
// and every other handle value fits 32 bits unless its documentation says that it is an address.
using HANDLE = void*;
using HGDIOBJ = void*;
using HWND = struct HWND__*;
using HDC = struct HDC__*;
using HBITMAP = struct HBITMAP__*;
using HBRUSH = struct HBRUSH__*;
using HPEN = struct HPEN__*;
using HFONT = struct HFONT__*;
using HICON = struct HICON__*;
using HCURSOR = HICON;
using HMENU = struct HMENU__*;
using HINSTANCE = struct HINSTANCE__*;
using HMODULE = HINSTANCE;
using HKEY = struct HKEY__*;
using HRSRC = struct HRSRC__*;
using HGLOBAL = HANDLE;

// Both conventions name the platform's normal one; the words stay so that one source serves both systems.
#define WINAPI
#define CALLBACK
#define APIENTRY
#define STDMETHODCALLTYPE
#define CONST const

#define TRUE 1
#define FALSE 0
#define MAX_PATH 260

// Reasons of DllMain.
#define DLL_PROCESS_DETACH 0
#define DLL_PROCESS_ATTACH 1

struct POINT {
    LONG x;
    LONG y;
};
struct SIZE {
    LONG cx;
    LONG cy;
};
struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};
using LPRECT = RECT*;
using LPPOINT = POINT*;
using LPSIZE = SIZE*;

constexpr WORD LOWORD(DWORD_PTR value) {
    return static_cast<WORD>(value & 0xFFFF);
}
constexpr WORD HIWORD(DWORD_PTR value) {
    return static_cast<WORD>((value >> 16) & 0xFFFF);
}
constexpr BYTE LOBYTE(DWORD_PTR value) {
    return static_cast<BYTE>(value & 0xFF);
}
constexpr BYTE HIBYTE(DWORD_PTR value) {
    return static_cast<BYTE>((value >> 8) & 0xFF);
}
constexpr LONG MAKELONG(WORD low, WORD high) {
    return static_cast<LONG>(low | (static_cast<DWORD>(high) << 16));
}
constexpr WPARAM MAKEWPARAM(WORD low, WORD high) {
    return static_cast<DWORD>(MAKELONG(low, high));
}
constexpr LPARAM MAKELPARAM(WORD low, WORD high) {
    return static_cast<DWORD>(MAKELONG(low, high));
}

// Marks what the layer's one library exports; everything else in it is hidden.
#define TDKP_API extern "C" __attribute__((visibility("default")))
