#include "src/support/NQBuffer.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace tdkviz {

CNQBuffer* CNQBuffer::Create() {
    auto* buffer = new (std::nothrow) CNQBuffer;
    if (buffer) buffer->AddRef();
    return buffer;
}

CNQBuffer::~CNQBuffer() {
    if (IsOnHeap()) std::free(HeapData());
}

HRESULT CNQBuffer::QueryInterface(const GUID& id, void** out) {
    if (!out) return E_POINTER;
    const bool isOurs = id == kIID_IUnknown || id == kIID_IKVABuffer;
    *out = isOurs ? static_cast<IKVABuffer*>(this) : nullptr;
    if (!isOurs) return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

ULONG CNQBuffer::AddRef() {
    return RefCount.Add();
}

ULONG CNQBuffer::Release() {
    const int32_t left = RefCount.Remove();
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
}

HRESULT CNQBuffer::GetContents(void** data, uint32_t* size) {
    if (data) *data = GetBuffer();
    if (size) *size = CurrentSize();
    return S_OK;
}

HRESULT CNQBuffer::SetContents(const void* data, uint32_t size) {
    if (!data && size > 0) return E_INVALIDARG;
    const HRESULT result = Resize(size, false);
    if (SUCCEEDED(result) && size > 0) std::memmove(GetBuffer(), data, size);
    return result;
}

HRESULT CNQBuffer::SetSize(uint32_t size) {
    return Resize(size, true);
}

uint32_t CNQBuffer::GetSize() {
    return CurrentSize();
}

void* CNQBuffer::GetBuffer() {
    return IsOnHeap() ? HeapData() : Storage;
}

void* CNQBuffer::HeapData() const {
    void* data;
    std::memcpy(&data, Storage, sizeof data);
    return data;
}

uint32_t CNQBuffer::CurrentSize() const {
    if (!IsOnHeap()) return Storage[kFormByte];
    uint32_t size;
    std::memcpy(&size, Storage + kSizeOffset, sizeof size);
    return size;
}

void CNQBuffer::RecordHeap(void* data, uint32_t size) {
    std::memcpy(Storage, &data, sizeof data);
    Storage[kFormByte] = kHeapForm;
    RecordSize(size);
}

void CNQBuffer::RecordSize(uint32_t size) {
    if (IsOnHeap()) {
        std::memcpy(Storage + kSizeOffset, &size, sizeof size);
    } else {
        Storage[kFormByte] = static_cast<uint8_t>(size);
    }
}

HRESULT CNQBuffer::Resize(uint32_t newSize, bool keep) {
    if (RefCount.Get() > 1) return kBufferIsShared;
    if (newSize <= CurrentSize()) {
        RecordSize(newSize);
        return S_OK;
    }
    if (newSize > kInlineRoom) return GrowOnHeap(newSize, keep);
    if (IsOnHeap()) {
        // The block had more than 15 bytes before it was cut, so newSize of them can be read.
        void* const old = HeapData();
        std::memcpy(Storage, old, newSize);
        std::free(old);
    }
    Storage[kFormByte] = static_cast<uint8_t>(newSize);
    return S_OK;
}

HRESULT CNQBuffer::GrowOnHeap(uint32_t newSize, bool keep) {
    void* const old = IsOnHeap() ? HeapData() : nullptr;
    void* const data = old && keep ? std::realloc(old, newSize) : std::malloc(newSize);
    if (!data) return E_OUTOFMEMORY;
    if (!old && keep) std::memcpy(data, Storage, CurrentSize());
    if (old && !keep) std::free(old);
    RecordHeap(data, newSize);
    return S_OK;
}

}  // namespace tdkviz
