// The chained maps of all rooms: CNQMapPtrToPtr, CNQMapStringToPtr, CNQMapStringToString.
//
// Iteration of each of them:
//     intptr_t position = map.GetStartPosition();
//     while (position != 0) map.GetNext(position, key, value);
// It goes by ascending bucket and, within a bucket, from the newest entry to the oldest, so keys and order
// of insertion fix it. The entry just given out may be removed. No locks.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

#include "src/support/NQString.h"
#include "src/support/Text.h"

namespace tdkviz {

inline constexpr size_t kMapBuckets = 17;  // for the life of a map: the tables never grow
inline constexpr intptr_t kMapFirstPosition = -1;

// Hands out places for entries from blocks of `blockSize`, the lowest of a block first and a returned one
// before all others. Blocks go only with Clear and the pool.
template <typename Entry>
class MapNodePool {
public:
    explicit MapNodePool(uint32_t blockSize) : blockSize_(blockSize ? blockSize : 1) {}
    ~MapNodePool() { Clear(); }
    MapNodePool(const MapNodePool&) = delete;
    MapNodePool& operator=(const MapNodePool&) = delete;

    template <typename... Arguments>
    Entry* Make(Arguments&&... arguments) {
        if (!free_) AddBlock();
        Node* node = free_;
        Node* const next = node->next;
        Entry* entry = new (node->place) Entry{std::forward<Arguments>(arguments)...};
        free_ = next;
        return entry;
    }
    void Return(Entry* entry) {
        entry->~Entry();
        Node* node = new (static_cast<void*>(entry)) Node;
        node->next = free_;
        free_ = node;
    }
    // All entries must have been returned.
    void Clear() {
        while (Block* block = blocks_) {
            blocks_ = block->next;
            ::operator delete(block);
        }
        free_ = nullptr;
    }

private:
    union Node {
        Node* next;
        alignas(Entry) unsigned char place[sizeof(Entry)];
    };
    struct Block {
        Block* next;
        uintptr_t count;
        uintptr_t zero;
    };
    static_assert(alignof(Entry) <= alignof(Block));

    void AddBlock() {
        void* memory = ::operator new(sizeof(Block) + blockSize_ * sizeof(Node));
        blocks_ = new (memory) Block{blocks_, blockSize_, 0};
        auto* places = reinterpret_cast<unsigned char*>(blocks_ + 1);
        for (size_t i = blockSize_; i-- > 0;) {
            Node* node = new (places + i * sizeof(Node)) Node;
            node->next = free_;
            free_ = node;
        }
    }

    Node* free_ = nullptr;
    Block* blocks_ = nullptr;
    uint32_t blockSize_;
};

// The bucket table and the walk over it that all maps share.
template <typename Entry>
class MapBuckets {
public:
    bool Exists() const { return heads_ != nullptr; }
    void Release() { heads_.reset(); }
    Entry* Head(size_t bucket) const { return heads_ ? (*heads_)[bucket] : nullptr; }
    Entry*& Link(size_t bucket) { return (*heads_)[bucket]; }
    // Makes the table on the first insertion.
    void Ensure() {
        if (!heads_) heads_ = std::make_unique<std::array<Entry*, kMapBuckets>>();
    }
    Entry* FirstFrom(size_t bucket) const {
        for (; bucket < kMapBuckets; ++bucket) {
            if (Entry* head = Head(bucket)) return head;
        }
        return nullptr;
    }
    // The entry at `position`, which moves on; null at the end.
    Entry* Step(intptr_t& position) const {
        if (position == 0) return nullptr;
        Entry* entry = position == kMapFirstPosition ? FirstFrom(0) : reinterpret_cast<Entry*>(position);
        if (!entry) {
            position = 0;
            return nullptr;
        }
        position = reinterpret_cast<intptr_t>(entry->Next ? entry->Next : FirstFrom(entry->Bucket + 1));
        return entry;
    }

private:
    std::unique_ptr<std::array<Entry*, kMapBuckets>> heads_;
};

// Keys and values are words, pointers as a rule.
class CNQMapPtrToPtr {
public:
    // `blockSize` is the number of entries that are allocated at a time.
    explicit CNQMapPtrToPtr(uint32_t blockSize) : pool_(blockSize) {}

    // The bucket is this number modulo 17.
    virtual uintptr_t HashKey(uintptr_t key) const { return key >> 4; }
    // 0 if they are equal.
    virtual intptr_t CompareKeys(uintptr_t a, uintptr_t b) const { return static_cast<intptr_t>(a - b); }

    // Replaces the value of a key that is there.
    void Set(uintptr_t key, uintptr_t value);
    bool Lookup(uintptr_t key, uintptr_t& value) const;
    bool Remove(uintptr_t key);
    uint32_t GetCount() const { return count_; }
    intptr_t GetStartPosition() const { return count_ ? kMapFirstPosition : 0; }
    void GetNext(intptr_t& position, uintptr_t& key, uintptr_t& value) const;

private:
    struct Entry {
        Entry* Next;
        size_t Bucket;
        uintptr_t Key;
        uintptr_t Value;
    };
    Entry* Find(uintptr_t key, size_t bucket) const;

    MapBuckets<Entry> buckets_;
    uint32_t count_ = 0;
    MapNodePool<Entry> pool_;
};

// The hash of the string maps: 33 times so far plus the first byte of each character, as a signed number.
uint32_t HashMapText(const char* text);
// Whether two keys are one, by their bytes or without regard to case.
bool SameMapText(const char* a, const char* b, bool caseSensitive);

// Keys are byte text and differ by case. A null key counts as empty.
template <typename Value>
class CNQMapStringTo {
public:
    explicit CNQMapStringTo(uint32_t blockSize) : pool_(blockSize) {}
    ~CNQMapStringTo() { RemoveAll(); }
    CNQMapStringTo(const CNQMapStringTo&) = delete;
    CNQMapStringTo& operator=(const CNQMapStringTo&) = delete;

    // A key that is there keeps its entry and gets the new value.
    void Set(const char* key, const Value& value) {
        const char* const text = key ? key : "";
        const size_t bucket = HashMapText(text) % kMapBuckets;
        if (Entry* entry = FindEntry(text, bucket)) {
            entry->Stored = value;
            return;
        }
        buckets_.Ensure();
        buckets_.Link(bucket) = pool_.Make(buckets_.Head(bucket), bucket, CNQString(text), value);
        ++count_;
    }
    // The value in the map, or null.
    const Value* Find(const char* key) const {
        const char* const text = key ? key : "";
        const Entry* entry = count_ ? FindEntry(text, HashMapText(text) % kMapBuckets) : nullptr;
        return entry ? &entry->Stored : nullptr;
    }
    bool Lookup(const char* key, Value& value) const {
        const Value* found = Find(key);
        if (found) value = *found;
        return found != nullptr;
    }
    void RemoveAll() {
        for (size_t bucket = 0; bucket < kMapBuckets; ++bucket) {
            Entry* entry = buckets_.Head(bucket);
            while (entry) pool_.Return(std::exchange(entry, entry->Next));
        }
        buckets_.Release();
        count_ = 0;
        pool_.Clear();
    }
    uint32_t GetCount() const { return count_; }
    intptr_t GetStartPosition() const { return count_ ? kMapFirstPosition : 0; }
    void GetNext(intptr_t& position, CNQString& key, Value& value) const {
        if (const Entry* entry = buckets_.Step(position)) {
            key = entry->Key;
            value = entry->Stored;
        }
    }

private:
    struct Entry {
        Entry* Next;
        size_t Bucket;
        CNQString Key;
        Value Stored;
    };
    Entry* FindEntry(const char* key, size_t bucket) const {
        Entry* entry = buckets_.Head(bucket);
        while (entry && !SameMapText(entry->Key.GetText(), key, caseSensitive_)) entry = entry->Next;
        return entry;
    }

    MapBuckets<Entry> buckets_;
    uint32_t count_ = 0;
    MapNodePool<Entry> pool_;
    bool caseSensitive_ = true;
};

using CNQMapStringToPtr = CNQMapStringTo<uintptr_t>;
using CNQMapStringToString = CNQMapStringTo<CNQString>;

}  // namespace tdkviz
