// What a test hands to the code under test as an object.
#pragma once

#include <atomic>

#include <tdkviz/buffer.h>

namespace tdkviz::test {

// Lives where the test puts it, and counts its references for the checks only.
template <typename... Interfaces>
struct StackObject : Interfaces... {
    HRESULT QueryInterface(const GUID& id, void** out) override {
        IUnknown* const found = Find(id);
        *out = found;
        if (!found) return E_NOINTERFACE;
        found->AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return ++References; }
    ULONG Release() override { return --References; }
    // The interface that goes by this name, as it is to be handed out.
    virtual IUnknown* Find(const GUID&) { return nullptr; }

    std::atomic<ULONG> References{0};
};

// Ends with its last reference; the maker has the first.
template <typename... Interfaces>
struct HeapObject : StackObject<Interfaces...> {
    HeapObject() { this->References = 1; }
    virtual ~HeapObject() = default;
    ULONG Release() override {
        const ULONG left = --this->References;
        if (left == 0) delete this;
        return left;
    }
};

// A view of bytes that the test owns.
struct FakeBuffer : StackObject<IKVABuffer> {
    FakeBuffer(const void* data, size_t size) : Data(const_cast<void*>(data)), Size(static_cast<uint32_t>(size)) {}
    HRESULT GetContents(void** data, uint32_t* size) override {
        *data = Data;
        *size = Size;
        return S_OK;
    }
    HRESULT SetContents(const void*, uint32_t) override { return E_FAIL; }
    HRESULT SetSize(uint32_t) override { return E_FAIL; }
    uint32_t GetSize() override { return Size; }
    void* GetBuffer() override { return Data; }
    void* Data;
    uint32_t Size;
};

}  // namespace tdkviz::test
