#include "src/support/StringTable.h"

#include <windows.h>

#include <cstring>
#include <utility>

namespace tdkviz {
namespace {

constexpr uint32_t kHashStart = 12798;
constexpr uint32_t kHashMultiplier = 33;
constexpr uint32_t kBucketsPerKey = 3;  // after growing, which begins at two thirds

uint32_t HashBytes(const char* text) {
    uint32_t hash = kHashStart;
    for (; *text; ++text) {
        hash = hash * kHashMultiplier + static_cast<uint32_t>(static_cast<signed char>(*text));
    }
    return hash;
}

}  // namespace

CStringTable::CStringTable(uint32_t buckets) : table_(buckets ? buckets : 1), compare_(_stricmp), hash_(HashBytes) {}

CStringTable::~CStringTable() {
    for (Node* node : table_) {
        while (node) delete std::exchange(node, node->Next);
    }
}

CStringTable::Node* CStringTable::Insert(const char* key, uint32_t value) {
    const uint32_t hash = hash_(key);
    if (Node* found = FindIn(key, hash)) return found;
    ++count_;
    if (kBucketsPerKey * count_ > 2 * GetBucketCount()) Grow();
    const size_t size = std::strlen(key) + 1;
    auto node = std::make_unique<Node>();
    node->Key = std::make_unique<char[]>(size);
    std::memcpy(node->Key.get(), key, size);
    node->Value = value;
    node->Hash = hash;
    Node*& head = table_[hash % GetBucketCount()];
    node->Next = head;
    head = node.release();
    return head;
}

CStringTable::Node* CStringTable::Find(const char* key) const {
    return FindIn(key, hash_(key));
}

CStringTable::Node* CStringTable::FindIn(const char* key, uint32_t hash) const {
    Node* node = table_[hash % GetBucketCount()];
    while (node && compare_(node->Key.get(), key) != 0) node = node->Next;
    return node;
}

void CStringTable::Grow() {
    std::vector<Node*> grown(static_cast<size_t>(count_) * kBucketsPerKey);
    for (Node* node : table_) {
        while (node) {
            Node* const next = node->Next;
            Node*& head = grown[node->Hash % grown.size()];
            node->Next = std::exchange(head, node);
            node = next;
        }
    }
    table_.swap(grown);
}

}  // namespace tdkviz
