// IKVABuffer: a counted block of bytes that crosses every border of the system.
#pragma once

#include <tdkviz/com.h>

inline constexpr GUID kIID_IKVABuffer = {0x00001300, 0x0901, 0x11D1, {0x8B, 0x06, 0x00, 0xA0, 0x24, 0x40, 0x6D, 0x59}};

// Sizes are bytes. A buffer is used by one thread at a time; only its reference count is atomic.
// Addresses are good until the next resize or the last Release.
struct IKVABuffer : IUnknown {
    // Address and size of the data. S_OK.
    virtual HRESULT GetContents(void** data, uint32_t* size) = 0;
    // Resizes without keeping the old bytes and copies `size` bytes from `data` [borrowed].
    // kBufferIsShared if the buffer has more than one holder, E_OUTOFMEMORY; nothing has changed then.
    virtual HRESULT SetContents(const void* data, uint32_t size) = 0;
    // Resizes and keeps the bytes that fit; new bytes are not set. Results as for SetContents.
    virtual HRESULT SetSize(uint32_t size) = 0;
    virtual uint32_t GetSize() = 0;
    // The data, which may be written to.
    virtual void* GetBuffer() = 0;
};
