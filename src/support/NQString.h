// CNQString: an eight-byte string. Short text lives in the value itself, longer text in a shared block.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tdkviz {

// Invariants:
// 1. Byte 7 tells the form. Inline: 7 minus the length, so a text of 7 bytes is terminated by it.
//    Shared: 255, and bytes 0 to 5 hold the text's address.
// 2. A shared block is: length (24 bits, little-endian), count of the values that share it (one byte),
//    the text, its terminator. The address in the value is the text's.
// 3. The count never passes 255: a copy of such a source gets a block of its own.
// 4. The text is always terminated.
//
// Byte text in the system's ANSI code page; all numbers count bytes, the longest text has kMaxLength of
// them (longer text is cut). No locks: values that share a block belong to one thread or one lock.
// Throws std::bad_alloc when there is no memory, with the value unchanged.
class alignas(8) CNQString {
public:
    static constexpr int32_t kMaxLength = 0xFFFFFF;

    CNQString() { SetInlineLength(0); }
    CNQString(const char* text);  // NOLINT(google-explicit-constructor): null counts as empty
    // `length` -1: up to the terminator.
    CNQString(const char* text, int32_t length);
    CNQString(const CNQString& other);
    CNQString(CNQString&& other) noexcept;
    ~CNQString() { Release(); }

    CNQString& operator=(const CNQString& other);
    CNQString& operator=(CNQString&& other) noexcept;
    CNQString& operator=(const char* text);

    void Empty();
    int32_t GetLength() const { return IsShared() ? SharedLength() : kInlineRoom - bytes_[kFormByte]; }
    bool IsEmpty() const { return GetLength() == 0; }
    // The terminated text, good until the value changes or ends.
    const char* GetText() const { return IsShared() ? SharedText() : reinterpret_cast<const char*>(bytes_); }

    // Index of the first or last `c`, or -1, by whole characters of the code page.
    int32_t Find(char c) const;
    int32_t ReverseFind(char c) const;
    // Arguments beyond the text are cut to it.
    CNQString Mid(int32_t start, int32_t count) const;
    CNQString Left(int32_t count) const;
    CNQString Right(int32_t count) const;

    CNQString& operator+=(const char* text);
    CNQString& operator+=(const CNQString& other);

    // Writable, unshared room for at least `count` characters and a terminator; the length stays.
    char* GetBuffer(int32_t count);
    // Ends the writing: records `length` (-1: up to the terminator, which then must stand) and terminates.
    void ReleaseBuffer(int32_t length = -1);

    friend CNQString operator+(const CNQString& a, const CNQString& b);
    friend CNQString operator+(const CNQString& a, const char* b);
    friend CNQString operator+(const CNQString& a, char b);
    friend bool operator==(const CNQString& a, const CNQString& b);
    friend bool operator==(const CNQString& a, const char* b);

private:
    static constexpr int32_t kInlineRoom = 7;
    static constexpr size_t kFormByte = 7;
    static constexpr uint8_t kSharedForm = 255;
    static constexpr uint8_t kMaxSharers = 255;
    static constexpr size_t kBlockHeader = 4;  // length and count

    bool IsShared() const { return bytes_[kFormByte] == kSharedForm; }
    char* SharedText() const;
    int32_t SharedLength() const;
    uint8_t& SharerCount() const;
    void SetInlineLength(int32_t length);
    void SetSharedLength(int32_t length);
    void PointTo(char* text);
    void Assign(const char* text, int32_t length);
    void AllocateBlock(const char* text, int32_t length, int32_t room);
    void Append(const char* text, int32_t length);
    void MakeRoom(int32_t room);
    void Release();

    uint8_t bytes_[8] = {};
};
static_assert(sizeof(CNQString) == 8);

}  // namespace tdkviz
