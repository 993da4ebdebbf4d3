// What the add-on asks of its host. A host serves these through QueryInterface on the context object
// that it gives to ITKCommandButton::Initialize. Any of them may be missing: the step that needs it is
// then skipped, and without a player no frame ever starts. docs/hosts.md tells the calling order.
#pragma once

#include <tdkviz/com.h>
#include <tdkviz/values.h>

struct ITKCommandButton;
struct IKVAAudioHook;

// States of the playback engine that the add-on tells apart; all others count as not playing.
inline constexpr uint32_t kEngineStatePaused = 2;
inline constexpr uint32_t kEngineStatePlaying = 3;
// QueryEngineFlag: not 0 lets visualization run.
inline constexpr uint32_t kEngineFlagVisualize = 1;
// Text in the engine's preferences: the delay in seconds when the engine has no IKVAAudioDelay.
inline constexpr char kPreferenceAudioSyncFactor[] = "audiosyncfactor";

// Observers, served by the add-on. [host]
inline constexpr GUID kIID_ITKStateObserver = {
    0xFFCD5087, 0x0034, 0x11D1, {0x99, 0x07, 0x44, 0x45, 0x53, 0x54, 0x00, 0x00}};
struct ITKStateObserver : IUnknown {
    virtual HRESULT OnStateChange(uint32_t oldState, uint32_t newState) = 0;
    virtual HRESULT OnStateDetail(uint32_t value) = 0;
};

inline constexpr GUID kIID_ITKTrackObserver = {
    0x0AA35607, 0xEF4D, 0x4BB2, {0xBF, 0xB5, 0x30, 0x1A, 0x20, 0x62, 0x95, 0xBF}};
struct ITKTrackObserver : IUnknown {
    virtual HRESULT OnTrackChange(IUnknown* track) = 0;
};

inline constexpr GUID kIID_ITKPlaybackEngineObserver = {
    0x0E0F4741, 0x3F54, 0x11D1, {0x92, 0x3F, 0x00, 0x60, 0x97, 0x1F, 0xE1, 0x1F}};
struct ITKPlaybackEngineObserver : IUnknown {
    // `engine` is an ITKPlaybackEngine, or null. [borrowed]
    virtual HRESULT OnEngineChange(IUnknown* engine) = 0;
};

// Makes the host's common objects; asked for IKVAValues. Asked of the context.
inline constexpr GUID kIID_IKVAClassFactory = {
    0x00000000, 0x0901, 0x11D1, {0x8B, 0x06, 0x00, 0xA0, 0x24, 0x40, 0x6D, 0x59}};
struct IKVAClassFactory : IUnknown {
    virtual HRESULT CreateInstance(const GUID& id, void** out) = 0;
};

// The player. Asked of the context. Observers are kept [not counted].
inline constexpr GUID kIID_ITKPlayer = {0xE9812FB0, 0x02E6, 0x11D1, {0x92, 0x21, 0x00, 0x60, 0x97, 0x1F, 0xE1, 0x1F}};
struct ITKPlayer : IUnknown {
    // The ITKPlaybackEngine without a reference, or null. [any]
    virtual IUnknown* GetPlaybackEngine() = 0;
    virtual HRESULT AddEngineObserver(ITKPlaybackEngineObserver* observer) = 0;
    virtual HRESULT RemoveEngineObserver(ITKPlaybackEngineObserver* observer) = 0;
};

// Tells state changes. Asked of the player.
inline constexpr GUID kIID_ITKStateSource = {
    0xFFCD508C, 0x0034, 0x11D1, {0x99, 0x07, 0x44, 0x45, 0x53, 0x54, 0x00, 0x00}};
struct ITKStateSource : IUnknown {
    virtual HRESULT AddStateObserver(ITKStateObserver* observer) = 0;
    virtual HRESULT RemoveStateObserver(ITKStateObserver* observer) = 0;
};

// The playback engine has no identifier of its own: the player gives it.
struct ITKPlaybackEngine : IUnknown {
    virtual uint32_t GetState() = 0;                          // [any]
    virtual uint32_t QueryEngineFlag(uint32_t flag) = 0;      // [any]
    virtual HRESULT GetPreferences(IKVAValues** values) = 0;  // [counted]; may fail
};

// How far the device is behind what has been delivered, in milliseconds; 0 means none. Asked of the engine.
inline constexpr GUID kIID_IKVAAudioDelay = {
    0x00000713, 0x0901, 0x11D1, {0x8B, 0x06, 0x00, 0xA0, 0x24, 0x40, 0x6D, 0x59}};
struct IKVAAudioDelay : IUnknown {
    // The largest delay to expect; read when a format is announced or an engine changes. [audio] [host]
    virtual HRESULT GetConfiguredDelay(uint32_t* milliseconds) = 0;
    // From the end of the delivery that is under way to what is heard now; read on each delivery. [audio]
    virtual HRESULT GetCurrentDelay(uint32_t* milliseconds) = 0;
};

// Only a way to the hook service. Asked of the context.
inline constexpr GUID kIID_IKVAAudioService = {
    0x0000070A, 0x0901, 0x11D1, {0x8B, 0x06, 0x00, 0xA0, 0x24, 0x40, 0x6D, 0x59}};

inline constexpr GUID kIID_IKVAAudioHookService = {
    0xD51674F1, 0x40D6, 0x41D4, {0x8A, 0xFD, 0xFE, 0x72, 0xF9, 0x70, 0x16, 0xE9}};
// Asked of the audio service. The hook is kept [not counted]; `flags` is 1.
struct IKVAAudioHookService : IUnknown {
    virtual HRESULT AddHook(IKVAAudioHook* hook, uint32_t flags) = 0;
    virtual HRESULT RemoveHook(IKVAAudioHook* hook) = 0;
};

// The audio format as the host announces it; 12 bytes.
struct KVAAudioFormat {
    uint16_t Channels;
    uint16_t BitsPerSample;
    uint32_t SamplesPerSecond;  // Hz
    uint16_t BlockSize;         // bytes of the host's audio blocks
    uint16_t Reserved;
};
static_assert(sizeof(KVAAudioFormat) == 12);

// One delivery: interleaved audio in the format last announced. [borrowed]
struct KVAAudioData {
    IKVABuffer* Buffer;
};

// The tap, served by the add-on. [audio]
inline constexpr GUID kIID_IKVAAudioHook = {
    0x00000705, 0x0901, 0x11D1, {0x8B, 0x06, 0x00, 0xA0, 0x24, 0x40, 0x6D, 0x59}};
inline constexpr GUID kIID_IKVAAudioHookAlias = {
    0xAE7DC39D, 0xE2D1, 0x4381, {0x8A, 0xB7, 0x4E, 0x85, 0x6D, 0x30, 0x3A, 0xB9}};
struct IKVAAudioHook : IUnknown {
    virtual HRESULT OnAudioFormat(KVAAudioFormat* format) = 0;
    // `out` is not touched.
    virtual HRESULT OnAudioData(KVAAudioData* in, KVAAudioData* out) = 0;
};

inline constexpr GUID kIID_ITKAudioHook = {
    0x38DA0E26, 0x8431, 0x46A3, {0xA2, 0x14, 0xE0, 0x0E, 0xEB, 0x67, 0x5E, 0x86}};
struct ITKAudioHook : IUnknown {
    // Audio flows if either of the two lowest bits is set; otherwise what was delivered is forgotten.
    virtual HRESULT OnAudioState(uint32_t flags) = 0;
};

// Where the button stands. Asked of the site of Execute. [host]
inline constexpr GUID kIID_ITKButtonSite = {
    0x7C714080, 0xAE3A, 0x11D1, {0xA6, 0x07, 0x00, 0x60, 0x97, 0xE5, 0x7C, 0x78}};
struct ITKButtonSite : IUnknown {
    virtual HRESULT CommandDone(uint32_t command) = 0;
};

inline constexpr GUID kIID_ITKButtonPicture = {
    0xE6C79740, 0x4DD8, 0x11D2, {0x80, 0x57, 0x00, 0xC0, 0x4F, 0xEE, 0x3A, 0x97}};
struct ITKButtonPicture : IUnknown {
    // The bitmap becomes the host's. May come on any thread that switches the effects.
    virtual HRESULT SetButtonBitmap(HBITMAP bitmap, ITKCommandButton* button) = 0;
};

inline constexpr GUID kIID_ITKHelp = {0x19693BF1, 0xCAED, 0x11D3, {0x8B, 0xA5, 0x00, 0xC0, 0xF0, 0x40, 0xA6, 0x1A}};
struct ITKHelp : IUnknown {
    virtual HRESULT ShowHelpTopic(uint32_t topic) = 0;
};

// Text that the host keeps for plug-in files: service, catalog, entry, each asked of the one before. [load]
inline constexpr GUID kIID_ITKNameService = {
    0x86E548C7, 0xE4E2, 0x409D, {0x84, 0x50, 0xBB, 0x20, 0xAD, 0xE2, 0xD2, 0x6D}};
inline constexpr GUID kIID_ITKNameEntry = {
    0xA0CA07B3, 0x1D28, 0x436D, {0x8D, 0x24, 0x64, 0xA5, 0xFA, 0x98, 0x65, 0x70}};
struct ITKNameCatalog : IUnknown {
    virtual HRESULT GetEntry(const GUID& id, IUnknown** out) = 0;  // [counted]
};
struct ITKNameService : IUnknown {
    virtual HRESULT GetCatalog(IUnknown** out) = 0;  // an ITKNameCatalog [counted]
};
struct ITKNameEntry : IUnknown {
    virtual HRESULT GetHostString(const char* path, char** text) = 0;  // the text stays the host's
};
