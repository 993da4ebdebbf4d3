// CNQHeader: the add-on's own IKVAValues, a small array of entries sorted by key.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <tdkviz/values.h>

#include "src/support/RefPtr.h"

namespace tdkviz {

// Made with new and a count of 0; the maker calls AddRef, the last Release destroys it. Operations,
// results and threads as told in IKVAValues. A null key is an absent one and can't be set (E_FAIL).
// E_OUTOFMEMORY when a key can't be added.
class CNQHeader final : public IKVAValues {
public:
    // An empty bag with one reference for the caller, or null when there is no memory.
    static CNQHeader* Create();

    CNQHeader() = default;
    CNQHeader(const CNQHeader&) = delete;
    CNQHeader& operator=(const CNQHeader&) = delete;

    HRESULT QueryInterface(const GUID& id, void** out) override;
    ULONG AddRef() override;
    ULONG Release() override;
    HRESULT SetNumber(const char* key, uint32_t value) override;
    HRESULT GetNumber(const char* key, uint32_t* value) override;
    HRESULT GetFirstNumber(const char** key, uint32_t* value) override;
    HRESULT GetNextNumber(const char** key, uint32_t* value) override;
    HRESULT SetBufferValue(const char* key, IKVABuffer* buffer) override;
    HRESULT GetBufferValue(const char* key, IKVABuffer** buffer) override;
    HRESULT GetFirstBufferValue(const char** key, IKVABuffer** buffer) override;
    HRESULT GetNextBufferValue(const char** key, IKVABuffer** buffer) override;
    HRESULT SetTextValue(const char* key, IKVABuffer* text) override;
    HRESULT GetTextValue(const char* key, IKVABuffer** text) override;
    HRESULT GetFirstTextValue(const char** key, IKVABuffer** text) override;
    HRESULT GetNextTextValue(const char** key, IKVABuffer** text) override;

private:
    struct Entry {
        // On the heap, since its address is given out and entries move.
        std::unique_ptr<char[]> Key;
        uint32_t Number = 0;
        bool HasNumber = false;
        RefPtr<IKVABuffer> Buffer;
        RefPtr<IKVABuffer> Text;
    };
    using Slot = RefPtr<IKVABuffer> Entry::*;
    static constexpr size_t kAtEnd = static_cast<size_t>(-1);

    ~CNQHeader() = default;

    int Compare(const char* a, const char* b) const;
    size_t LowerBound(const char* key) const;
    const Entry* Find(const char* key) const;
    // The entry, made with empty slots if absent; null when there is no memory.
    Entry* FindOrInsert(const char* key);
    HRESULT SetSlot(Slot slot, const char* key, IKVABuffer* buffer);
    HRESULT GetSlot(Slot slot, const char* key, IKVABuffer** buffer) const;
    HRESULT NumberFrom(size_t start, const char** key, uint32_t* value);
    HRESULT SlotFrom(size_t& cursor, size_t start, Slot slot, const char** key, IKVABuffer** buffer);

    tdkviz::RefCount RefCount;
    std::vector<Entry> Entries;
    bool CaseSensitive = false;
    size_t NumberCursor = kAtEnd;
    size_t BufferCursor = kAtEnd;
    size_t TextCursor = kAtEnd;
};

}  // namespace tdkviz
