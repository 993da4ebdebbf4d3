// What the add-on serves to its host. The library exports TKCreateInstance and SetDLLAccessPath.
//
// Calling order of a host that wants a picture on screen: SetDLLAccessPath if companions lie in folders
// of their own; TKCreateInstance; Initialize; QueryInterface for IMPAVizMgr; CreateVizWindow with a
// parent window; SetViewFlags, SelectPlugin, Show on the view; play. At the end DestroyVizWindow,
// Shutdown, the last Release. All operations are for the host's threads. [host]
#pragma once

#include <tdkviz/com.h>
#include <tdkviz/values.h>

inline constexpr GUID kIID_ITKCommandButton = {
    0xEAD18540, 0xAE33, 0x11D1, {0xA6, 0x07, 0x00, 0x60, 0x97, 0xE5, 0x7C, 0x78}};
inline constexpr GUID kIID_IMPAVizMgr = {0x5E95EFE1, 0x7B3A, 0x4AF9, {0xBA, 0x49, 0x23, 0x4C, 0x57, 0x0B, 0xC7, 0x8F}};
inline constexpr GUID kIID_IMPAVizParentMgr = {
    0xDFF30D21, 0x4618, 0x11D4, {0x95, 0x34, 0x00, 0xD0, 0xB7, 0x21, 0xA8, 0x8D}};
inline constexpr GUID kIID_IMPAAdvancedConfiguration = {
    0x6D753105, 0x3AF9, 0x4869, {0x96, 0x20, 0x10, 0x3B, 0x09, 0x1E, 0x34, 0x37}};
inline constexpr GUID kIID_IMPAVizWindow = {
    0xE40749EF, 0xD3D9, 0x4131, {0x8A, 0x44, 0xCC, 0x70, 0x36, 0x08, 0x96, 0x30}};

// View flags.
inline constexpr uint32_t kViewClickStepsPlugins = 1;  // a left click goes to the next plug-in
inline constexpr uint32_t kViewRotateButton = 2;       // Show makes a "Rotate" button below the picture
inline constexpr uint32_t kViewRightClicks = 4;        // the view itself listens to right clicks

// Keys of IMPAAdvancedConfiguration, all numbers.
inline constexpr char kConfigShowAlwaysOnTop[] = "ShowAlwaysOnTop";
inline constexpr char kConfigFrameRate[] = "VizFrameRate";  // 10 to 30
inline constexpr char kConfigEffects[] = "VizEffects";
inline constexpr char kConfigRandomize[] = "VizRandomize";

// Host objects that the add-on calls, kept [not counted]: remove them before they end.
struct IMPAListReceiver : IUnknown {
    virtual HRESULT PluginAppeared(const char* path) = 0;  // [watch]
    virtual HRESULT PluginVanished(const char* path) = 0;  // [watch]
};
struct IMPAConfigReceiver : IUnknown {
    virtual HRESULT ConfigChanged(const char* name, const char* value) = 0;  // [host]
};
struct IMPAClickReceiver : IUnknown {
    virtual HRESULT ViewClicked(uint32_t x, uint32_t y, uint32_t flags) = 0;  // [frame]
};

// One visualization on screen. Pixels. S_OK or E_FAIL.
struct IMPAVizWindow : IUnknown {
    // Before the window stands the size is kept and E_FAIL given; the view then comes up by itself.
    virtual HRESULT Show(int32_t width, int32_t height) = 0;
    virtual HRESULT Resize(int32_t width, int32_t height) = 0;
    virtual HRESULT Hide() = 0;
    // E_FAIL if none is selected or the path with its terminator doesn't fit `size` bytes.
    virtual HRESULT GetCurrentPlugin(char* path, uint32_t size) = 0;
    // A path as GetPluginInfo gave it, byte for byte. A plug-in that can't be loaded leaves the old one
    // in place and gives S_OK.
    virtual HRESULT SelectPlugin(const char* path) = 0;
    // Before Show.
    virtual HRESULT SetViewFlags(uint32_t flags) = 0;
    virtual HRESULT AddClickReceiver(IUnknown* receiver) = 0;
    virtual HRESULT AddRightClickReceiver(IUnknown* receiver) = 0;
    virtual HRESULT RemoveClickReceiver(IUnknown* receiver) = 0;
    virtual HRESULT RemoveRightClickReceiver(IUnknown* receiver) = 0;
};

struct IMPAVizMgr : IUnknown {
    // Makes a view inside the window behind `parent` (null: none). The view is owned by the manager and
    // ends with DestroyVizWindow. E_FAIL without plug-ins.
    virtual HRESULT CreateVizWindow(IMPAVizWindow** view, uint32_t* parent) = 0;
    virtual HRESULT DestroyVizWindow(IMPAVizWindow* view) = 0;
    virtual HRESULT NoOperation(uint32_t value) = 0;
    // 0 until something has asked for the list.
    virtual uint32_t GetPluginCount() = 0;
    // Name and path of the entry; both buffers have `size` bytes. E_FAIL for an index out of range, for
    // texts that don't fit, and once for a plug-in that can't be loaded, which leaves the list.
    virtual HRESULT GetPluginInfo(uint16_t index, char* name, char* path, uint32_t size) = 0;
    virtual HRESULT GetPluginIndex(const char* path, uint32_t* index) = 0;
    virtual HRESULT GetPluginName(const char* path, char* name, uint32_t size) = 0;
    // An IMPAListReceiver.
    virtual HRESULT AddListReceiver(IUnknown* receiver) = 0;
    virtual HRESULT RemoveListReceiver(IUnknown* receiver) = 0;
    virtual int32_t GetAlwaysOnTop() = 0;
    // An IMPAConfigReceiver.
    virtual HRESULT AddConfigReceiver(IUnknown* receiver) = 0;
    virtual HRESULT RemoveConfigReceiver(IUnknown* receiver) = 0;
};

struct IMPAVizParentMgr : IUnknown {
    virtual HRESULT SetDialogParent(MPAVizWindowRecord* record) = 0;  // [borrowed], copied
    virtual HRESULT UseDialogParent(bool use) = 0;
};

struct IMPAAdvancedConfiguration : IUnknown {
    virtual HRESULT GetConfiguration(IKVAValues** values) = 0;  // [counted]
    virtual HRESULT SetConfiguration(IKVAValues* values) = 0;   // any subset of the keys
};

// The component: a button of the player.
struct ITKCommandButton : IUnknown {
    virtual HBITMAP GetButtonBitmap() = 0;  // the caller's; null without the resource manager
    virtual HRESULT GetButtonLabel(char* text, uint32_t size) = 0;
    // Opens the settings dialog or brings it to the top. `site` is asked for ITKButtonSite.
    virtual HRESULT Execute(uint32_t command, IUnknown* site, MPAVizWindowRecord* parent) = 0;
    virtual HRESULT CloseDialog() = 0;
    virtual bool IsDialogOpen() = 0;
    // Once, before anything that needs the player. `context` is kept [not counted] until Shutdown.
    virtual HRESULT Initialize(IUnknown* context) = 0;
    virtual HRESULT Shutdown() = 0;
};

// Exports of the library.
inline constexpr char kCreateInstanceName[] = "TKCreateInstance";
using TKCreateInstanceFunction = HRESULT (*)(IUnknown** out);
// A run of zero-terminated Name=Folder strings, closed by an empty one. [borrowed]
inline constexpr char kSetDLLAccessPathName[] = "SetDLLAccessPath";
using SetDLLAccessPathFunction = HRESULT (*)(const char* block);
