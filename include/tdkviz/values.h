// IKVAValues: a bag of named values. IKVAPreferences: text that a plug-in keeps between runs.
#pragma once

#include <tdkviz/buffer.h>

inline constexpr GUID kIID_IKVAValues = {0x00001302, 0x0901, 0x11D1, {0x8B, 0x06, 0x00, 0xA0, 0x24, 0x40, 0x6D, 0x59}};
inline constexpr GUID kIID_IKVAPreferences = {
    0x00000500, 0x0901, 0x11D1, {0x8B, 0x06, 0x00, 0xA0, 0x24, 0x40, 0x6D, 0x59}};

// Each key has three independent slots: a number, a buffer and a text (a buffer that holds a terminated
// string). Keys are zero-terminated text without regard to case; the bag copies what it is given, and
// gives out its own copy, good while the bag lives. Buffers are given out [counted], and the bag holds
// a reference on each buffer in it. Each kind has an iteration of its own, ascending by key; a Set
// ends the iterations. A bag is used by one thread at a time.
//
// Get: S_OK, or E_FAIL for an absent key or an empty slot, `out` untouched. Set: S_OK, or E_FAIL for a
// null buffer. First and Next: S_OK, or E_FAIL at the end.
struct IKVAValues : IUnknown {
    virtual HRESULT SetNumber(const char* key, uint32_t value) = 0;
    virtual HRESULT GetNumber(const char* key, uint32_t* value) = 0;
    virtual HRESULT GetFirstNumber(const char** key, uint32_t* value) = 0;
    virtual HRESULT GetNextNumber(const char** key, uint32_t* value) = 0;
    virtual HRESULT SetBufferValue(const char* key, IKVABuffer* buffer) = 0;
    virtual HRESULT GetBufferValue(const char* key, IKVABuffer** buffer) = 0;
    virtual HRESULT GetFirstBufferValue(const char** key, IKVABuffer** buffer) = 0;
    virtual HRESULT GetNextBufferValue(const char** key, IKVABuffer** buffer) = 0;
    virtual HRESULT SetTextValue(const char* key, IKVABuffer* text) = 0;
    virtual HRESULT GetTextValue(const char* key, IKVABuffer** text) = 0;
    virtual HRESULT GetFirstTextValue(const char** key, IKVABuffer** text) = 0;
    virtual HRESULT GetNextTextValue(const char** key, IKVABuffer** text) = 0;
};

// One store for all plug-ins of a user: let names begin with the plug-in's own, "Waterfall Colours". [any]
struct IKVAPreferences : IUnknown {
    // The stored text as a buffer with its terminator [counted]. E_INVALIDARG for a null name, E_FAIL if
    // there is no such text; `buffer` is null then.
    virtual HRESULT ReadValue(const char* name, IKVABuffer** buffer) = 0;
    // Stores the buffer's text [borrowed] up to its first zero. E_INVALIDARG for a null argument, else S_OK.
    virtual HRESULT WriteValue(const char* name, IKVABuffer* buffer) = 0;
};
