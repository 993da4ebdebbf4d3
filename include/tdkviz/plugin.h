// The contract between the add-on and a visualization plug-in: a library NAME.tkv that exports
// MPACreateVisualization. See docs/plugins.md for a plug-in in 40 lines.
//
// Order of calls: MPACreateVisualization, Initialize, GetInfo, GetCapabilities, then SetPreferences
// (or SetHostString). If only the description was wanted, the object is released and the library freed;
// all this can happen several times in one run. When a view takes the plug-in: SetActive, SetWindow
// (window mode), then Draw or DrawToWindow once a frame, until SetActive(0) or SetWindow with a zero
// handle, Close, the last Release and the end of the library. A negative result of any of the first
// four fails the load; the results of all others are not looked at.
#pragma once

#include <tdkviz/analysis_frame.h>
#include <tdkviz/com.h>
#include <tdkviz/values.h>

inline constexpr GUID kIID_IMPAVisualization2 = {
    0x4F19B2B1, 0x8542, 0x4EA5, {0x86, 0xCB, 0x4F, 0xD6, 0x4C, 0x64, 0x17, 0xE5}};
inline constexpr GUID kIID_IMPAVisualization = {
    0x68771FAB, 0x618A, 0x4BFB, {0x9D, 0x66, 0x01, 0x20, 0xDE, 0x32, 0x3D, 0x51}};
inline constexpr GUID kIID_IMPAVisualizationClose = {
    0xFE17A718, 0xDD87, 0x43FA, {0xB2, 0x63, 0x68, 0xDD, 0x4F, 0x1A, 0x29, 0x86}};

// Which image effects may run over the plug-in's last picture before it paints the next one. The
// add-on starts from all of them; a mask of 0 turns effects off for this plug-in.
enum VizEffectMask : uint32_t {
    kEffectFade = 1,
    kEffectRotate = 2,
    kEffectZoom = 4,
    kEffectSlide = 8,
    kEffectBlur = 16,
    kEffectsAll = 0xFFFFFFFF,
};

enum VizRenderMode : uint32_t {
    kRenderToBuffer = 0,  // paints into the pixels of Draw
    kRenderToWindow = 1,  // paints by itself into the view's window
};

// Numbers that a plug-in sets in the bag of GetCapabilities.
inline constexpr char kPropertySupportConfigure[] = "SupportConfigure";  // not 0: Configure does something
inline constexpr char kPropertyRenderMode[] = "RenderMode";              // a VizRenderMode; 0 when missing

// Room of each of the three texts of GetInfo, with the terminator.
inline constexpr int kPluginTextSize = 257;

// The interface that is asked for first.
struct IMPAVisualization2 : IUnknown {
    // `context` is the player's context object; take a reference to keep it. [load]
    virtual HRESULT Initialize(IUnknown* context) = 0;
    // Three buffers of kPluginTextSize bytes; what is left untouched stays as it was known. [load]
    virtual HRESULT GetInfo(char* name, char* creator, char* description) = 0;
    // Stores a VizEffectMask and whether Draw reads the spectrum; sets properties. [load] [borrowed]
    virtual HRESULT GetCapabilities(uint32_t* effectMask, bool* wantsSpectrum, IKVAValues* properties) = 0;
    // The store that all plug-ins share; take a reference to keep it. [load]
    virtual HRESULT SetPreferences(IKVAPreferences* preferences) = 0;
    // Shows the plug-in's own dialog with this parent. Only if it said "SupportConfigure". [host]
    virtual HRESULT Configure(MPAVizWindowRecord* parent) = 0;
    // 1 when the view that shows this plug-in starts to play, 0 when it stops. [any]
    virtual HRESULT SetActive(uint32_t active) = 0;
    // Paints over the last picture as the effects left it. `pixels` is the lowest address of
    // height x |pitch| bytes, 0x00RRGGBB words. A negative pitch (the rule) says that the first row in
    // memory is the lowest one on screen; row y from the top is at pixels + (height - 1 - y) x |pitch|.
    // The size can change from call to call. bitsPerPixel is 32. [frame] [borrowed]
    virtual HRESULT Draw(void* pixels, int32_t width, int32_t height, int32_t pitch, int32_t bitsPerPixel,
                         VizAnalysisFrame* frame) = 0;
    // The left button was released at this place of the view's window (pixels from its top left corner);
    // `flags` is the message's key state. May come during Draw. [frame]
    virtual HRESULT OnClick(uint32_t x, uint32_t y, uint32_t flags) = 0;
    // Window mode: the window to paint into from now on; a zero handle withdraws it. [any] [borrowed]
    virtual HRESULT SetWindow(MPAVizWindowRecord* target) = 0;
    // Window mode: one frame. [frame] [borrowed]
    virtual HRESULT DrawToWindow(MPAVizWindowRecord* target, VizAnalysisFrame* frame) = 0;
};

// The older interface: buffers only. Offered instead of IMPAVisualization2; of an object with both,
// only the other is used. Operations of the same name mean the same.
struct IMPAVisualization : IUnknown {
    virtual HRESULT Initialize(IUnknown* context) = 0;
    virtual HRESULT GetInfo(char* name, char* creator, char* description) = 0;
    virtual HRESULT GetCapabilities(uint32_t* effectMask, bool* wantsSpectrum, IKVAValues* properties) = 0;
    virtual HRESULT Draw(void* pixels, int32_t width, int32_t height, int32_t pitch, int32_t bitsPerPixel,
                         VizAnalysisFrame* frame) = 0;
    virtual HRESULT OnClick(uint32_t x, uint32_t y, uint32_t flags) = 0;
    // The text that the host keeps for this plug-in's file; may be empty. [load] [borrowed]
    virtual HRESULT SetHostString(const char* text) = 0;
    virtual HRESULT Configure(HWND parent) = 0;
};

// Optional, asked of an IMPAVisualization2 that is about to be unloaded. The last call before the final Release, which
// comes on the add-on's worker in window mode if there is a window.
struct IMPAVisualizationClose : IUnknown {
    // Not during DrawToWindow, nor is the SetWindow before it, unless that frame takes more than two seconds. [any]
    virtual HRESULT Close() = 0;
};

// The export. Stores a new object with one reference for the caller. [load]
inline constexpr char kPluginFactoryName[] = "MPACreateVisualization";
using MPACreateVisualizationFunction = HRESULT (*)(IUnknown** out);
