#include "src/support/NQMaps.h"

#include <windows.h>

#include <cstring>

namespace tdkviz {

void CNQMapPtrToPtr::Set(uintptr_t key, uintptr_t value) {
    const size_t bucket = HashKey(key) % kMapBuckets;
    if (Entry* entry = Find(key, bucket)) {
        entry->Value = value;
        return;
    }
    buckets_.Ensure();
    buckets_.Link(bucket) = pool_.Make(buckets_.Head(bucket), bucket, key, value);
    ++count_;
}

bool CNQMapPtrToPtr::Lookup(uintptr_t key, uintptr_t& value) const {
    const Entry* entry = count_ ? Find(key, HashKey(key) % kMapBuckets) : nullptr;
    if (entry) value = entry->Value;
    return entry != nullptr;
}

bool CNQMapPtrToPtr::Remove(uintptr_t key) {
    if (count_ == 0) return false;
    Entry** link = &buckets_.Link(HashKey(key) % kMapBuckets);
    while (*link && CompareKeys((*link)->Key, key) != 0) link = &(*link)->Next;
    if (!*link) return false;
    Entry* removed = *link;
    *link = removed->Next;
    pool_.Return(removed);
    --count_;
    return true;
}

void CNQMapPtrToPtr::GetNext(intptr_t& position, uintptr_t& key, uintptr_t& value) const {
    if (const Entry* entry = buckets_.Step(position)) {
        key = entry->Key;
        value = entry->Value;
    }
}

CNQMapPtrToPtr::Entry* CNQMapPtrToPtr::Find(uintptr_t key, size_t bucket) const {
    Entry* entry = buckets_.Head(bucket);
    while (entry && CompareKeys(entry->Key, key) != 0) entry = entry->Next;
    return entry;
}

uint32_t HashMapText(const char* text) {
    constexpr uint32_t kMultiplier = 33;
    uint32_t hash = 0;
    for (const char* p = text; *p; p = NextChar(p)) {
        hash = hash * kMultiplier + static_cast<uint32_t>(static_cast<signed char>(*p));
    }
    return hash;
}

bool SameMapText(const char* a, const char* b, bool caseSensitive) {
    return (caseSensitive ? std::strcmp(a, b) : _stricmp(a, b)) == 0;
}

}  // namespace tdkviz
