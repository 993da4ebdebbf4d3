#include "src/support/NQString.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>
#include <utility>

#include "src/support/Text.h"

namespace tdkviz {
namespace {

constexpr size_t kAddressBytes = 6;
constexpr int kByteBits = 8;

int32_t TextLength(const char* text) {
    return text ? static_cast<int32_t>(std::min<size_t>(std::strlen(text), CNQString::kMaxLength)) : 0;
}

}  // namespace

CNQString::CNQString(const char* text) {
    Assign(text, TextLength(text));
}

CNQString::CNQString(const char* text, int32_t length) {
    if (!text) length = 0;
    Assign(text, length < 0 ? TextLength(text) : std::min(length, kMaxLength));
}

CNQString::CNQString(const CNQString& other) {
    if (!other.IsShared()) {
        std::memcpy(bytes_, other.bytes_, sizeof bytes_);
    } else if (other.SharerCount() == kMaxSharers) {
        AllocateBlock(other.SharedText(), other.SharedLength(), other.SharedLength());
    } else {
        ++other.SharerCount();
        std::memcpy(bytes_, other.bytes_, sizeof bytes_);
    }
}

CNQString::CNQString(CNQString&& other) noexcept : CNQString() {
    std::swap(bytes_, other.bytes_);
}

CNQString& CNQString::operator=(const CNQString& other) {
    CNQString copy(other);
    std::swap(bytes_, copy.bytes_);
    return *this;
}

CNQString& CNQString::operator=(CNQString&& other) noexcept {
    std::swap(bytes_, other.bytes_);
    return *this;
}

CNQString& CNQString::operator=(const char* text) {
    CNQString fresh(text);
    std::swap(bytes_, fresh.bytes_);
    return *this;
}

void CNQString::Empty() {
    Release();
    SetInlineLength(0);
}

int32_t CNQString::Find(char c) const {
    const char* found = FindChar(GetText(), c);
    return found ? static_cast<int32_t>(found - GetText()) : -1;
}

int32_t CNQString::ReverseFind(char c) const {
    const char* found = FindLastChar(GetText(), c);
    return found ? static_cast<int32_t>(found - GetText()) : -1;
}

CNQString CNQString::Mid(int32_t start, int32_t count) const {
    const int32_t from = std::clamp(start, 0, GetLength());
    return CNQString(GetText() + from, std::clamp(count, 0, GetLength() - from));
}

CNQString CNQString::Left(int32_t count) const {
    return Mid(0, count);
}

CNQString CNQString::Right(int32_t count) const {
    const int32_t taken = std::clamp(count, 0, GetLength());
    return Mid(GetLength() - taken, taken);
}

CNQString& CNQString::operator+=(const char* text) {
    Append(text, TextLength(text));
    return *this;
}

CNQString& CNQString::operator+=(const CNQString& other) {
    Append(other.GetText(), other.GetLength());
    return *this;
}

char* CNQString::GetBuffer(int32_t count) {
    MakeRoom(std::max(count, GetLength()));
    return IsShared() ? SharedText() : reinterpret_cast<char*>(bytes_);
}

void CNQString::ReleaseBuffer(int32_t length) {
    if (IsShared()) {
        MakeRoom(std::max(length, GetLength()));
        const int32_t recorded = std::min(length < 0 ? TextLength(SharedText()) : length, kMaxLength);
        SharedText()[recorded] = 0;
        SetSharedLength(recorded);
        return;
    }
    const auto measured = static_cast<int32_t>(strnlen(reinterpret_cast<char*>(bytes_), kInlineRoom));
    SetInlineLength(length < 0 ? measured : std::min(length, kInlineRoom));
}

CNQString operator+(const CNQString& a, const CNQString& b) {
    CNQString sum(a);
    sum += b;
    return sum;
}

CNQString operator+(const CNQString& a, const char* b) {
    CNQString sum(a);
    sum += b;
    return sum;
}

CNQString operator+(const CNQString& a, char b) {
    CNQString sum(a);
    sum.Append(&b, 1);
    return sum;
}

bool operator==(const CNQString& a, const CNQString& b) {
    return a.GetLength() == b.GetLength() &&
           std::memcmp(a.GetText(), b.GetText(), static_cast<size_t>(a.GetLength())) == 0;
}

bool operator==(const CNQString& a, const char* b) {
    return std::strcmp(a.GetText(), b ? b : "") == 0;
}

char* CNQString::SharedText() const {
    uintptr_t address = 0;
    std::memcpy(&address, bytes_, kAddressBytes);
    return reinterpret_cast<char*>(address);
}

int32_t CNQString::SharedLength() const {
    const auto* header = reinterpret_cast<const uint8_t*>(SharedText() - kBlockHeader);
    return header[0] | header[1] << kByteBits | header[2] << 2 * kByteBits;
}

uint8_t& CNQString::SharerCount() const {
    return reinterpret_cast<uint8_t*>(SharedText())[-1];
}

void CNQString::SetInlineLength(int32_t length) {
    bytes_[kFormByte] = static_cast<uint8_t>(kInlineRoom - length);
    if (length < kInlineRoom) bytes_[length] = 0;
}

void CNQString::SetSharedLength(int32_t length) {
    auto* header = reinterpret_cast<uint8_t*>(SharedText() - kBlockHeader);
    for (int i = 0; i < 3; ++i) header[i] = static_cast<uint8_t>(length >> i * kByteBits);
}

void CNQString::PointTo(char* text) {
    const auto address = reinterpret_cast<uintptr_t>(text);
    std::memcpy(bytes_, &address, kAddressBytes);
    bytes_[kAddressBytes] = 0;
    bytes_[kFormByte] = kSharedForm;
}

// Fills a value that holds no block.
void CNQString::Assign(const char* text, int32_t length) {
    if (length > kInlineRoom) return AllocateBlock(text, length, length);
    if (length > 0) std::memcpy(bytes_, text, static_cast<size_t>(length));
    SetInlineLength(length);
}

// Makes this value, which holds no block, the one sharer of a new one.
void CNQString::AllocateBlock(const char* text, int32_t length, int32_t room) {
    auto* block = static_cast<char*>(std::malloc(kBlockHeader + static_cast<size_t>(room) + 1));
    if (!block) throw std::bad_alloc();
    char* copy = block + kBlockHeader;
    std::memcpy(copy, text, static_cast<size_t>(length));
    copy[length] = 0;
    PointTo(copy);
    SetSharedLength(length);
    SharerCount() = 1;
}

void CNQString::Append(const char* text, int32_t length) {
    const int32_t old = GetLength();
    length = std::min(length, kMaxLength - old);
    if (length <= 0) return;
    const std::less<const char*> isBefore;
    if (!isBefore(text, GetText()) && !isBefore(GetText() + old, text)) {
        const CNQString copy(text, length);  // the text is our own and moves when we grow
        return Append(copy.GetText(), length);
    }
    char* grown = GetBuffer(old + length);
    std::memcpy(grown + old, text, static_cast<size_t>(length));
    ReleaseBuffer(old + length);
}

// Makes the text unshared, with room for `room` characters and the terminator.
void CNQString::MakeRoom(int32_t room) {
    if (!IsShared() && room <= kInlineRoom) return;
    if (!IsShared() || SharerCount() > 1) {
        CNQString fresh;
        fresh.AllocateBlock(GetText(), GetLength(), room);
        std::swap(bytes_, fresh.bytes_);
        return;
    }
    if (room <= SharedLength()) return;
    auto* block =
        static_cast<char*>(std::realloc(SharedText() - kBlockHeader, kBlockHeader + static_cast<size_t>(room) + 1));
    if (!block) throw std::bad_alloc();
    PointTo(block + kBlockHeader);
}

void CNQString::Release() {
    if (!IsShared()) return;
    if (--SharerCount() == 0) std::free(SharedText() - kBlockHeader);
}

}  // namespace tdkviz
