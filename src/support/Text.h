// Steps through byte text that know the double-byte code pages.
//
// Whether the system has such a code page is asked once and kept. All functions are safe on any thread.
#pragma once

#include <cstdint>

namespace tdkviz {

// The character behind the one at `p`; a null `p` stays null.
const char* NextChar(const char* p);

// First or last place of the single-byte character `c`, or null. `c` = 0 finds the terminator in FindChar.
const char* FindChar(const char* text, char c);
const char* FindLastChar(const char* text, char c);

// Whether `b` begins a double-byte character.
bool IsLeadByte(uint8_t b);

}  // namespace tdkviz
