// CNQBuffer: the add-on's own IKVABuffer, with up to 15 bytes in the object itself.
#pragma once

#include <cstdint>

#include <tdkviz/buffer.h>

#include "src/support/RefPtr.h"

namespace tdkviz {

// Made with new and a count of 0; the maker calls AddRef, the last Release destroys it. Operations,
// results and threads as told in IKVABuffer.
class CNQBuffer : public IKVABuffer {
public:
    // An empty buffer with one reference for the caller, or null when there is no memory.
    static CNQBuffer* Create();

    CNQBuffer() = default;
    CNQBuffer(const CNQBuffer&) = delete;
    CNQBuffer& operator=(const CNQBuffer&) = delete;

    HRESULT QueryInterface(const GUID& id, void** out) override;
    ULONG AddRef() override;
    ULONG Release() override;
    HRESULT GetContents(void** data, uint32_t* size) override;
    // E_INVALIDARG for a null `data` with a size.
    HRESULT SetContents(const void* data, uint32_t size) override;
    HRESULT SetSize(uint32_t size) override;
    uint32_t GetSize() override;
    void* GetBuffer() override;
    virtual ~CNQBuffer();

private:
    static constexpr uint32_t kInlineRoom = 15;
    static constexpr uint32_t kFormByte = 15;
    static constexpr uint32_t kSizeOffset = 8;
    static constexpr uint8_t kHeapForm = 238;  // can't be an inline size

    bool IsOnHeap() const { return Storage[kFormByte] == kHeapForm; }
    void* HeapData() const;
    uint32_t CurrentSize() const;
    void RecordHeap(void* data, uint32_t size);
    void RecordSize(uint32_t size);
    HRESULT Resize(uint32_t newSize, bool keep);
    HRESULT GrowOnHeap(uint32_t newSize, bool keep);

    tdkviz::RefCount RefCount;
    // Inline: the data, and the size in byte 15. Heap: address in bytes 0 to 7, size in 8 to 11, form 238.
    alignas(8) uint8_t Storage[16] = {};
};

}  // namespace tdkviz
