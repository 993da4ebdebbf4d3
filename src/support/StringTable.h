// CStringTable: a growing table of names that compare without regard to case. Used as a set of file names.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace tdkviz {

// Keys are copied. The hash doesn't fold case, so names that differ in case alone are one key only when
// they fall into the same bucket. No locks.
class CStringTable {
public:
    struct Node {
        std::unique_ptr<char[]> Key;
        uint32_t Value;
        uint32_t Hash;
        Node* Next;
    };

    explicit CStringTable(uint32_t buckets);
    ~CStringTable();
    CStringTable(const CStringTable&) = delete;
    CStringTable& operator=(const CStringTable&) = delete;

    // The node of the key, made with `value` if it wasn't there. It stays in place while the table lives.
    Node* Insert(const char* key, uint32_t value);
    // The node or null.
    Node* Find(const char* key) const;
    uint32_t GetCount() const { return count_; }
    uint32_t GetBucketCount() const { return static_cast<uint32_t>(table_.size()); }

private:
    Node* FindIn(const char* key, uint32_t hash) const;
    void Grow();

    uint32_t count_ = 0;
    std::vector<Node*> table_;
    int (*compare_)(const char*, const char*);
    uint32_t (*hash_)(const char*);
};

}  // namespace tdkviz
