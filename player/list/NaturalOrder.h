// The order in which people number their files: "2 b" before "10 a", capitals beside small letters.
#pragma once

#include <string>

namespace tdkplay {

// Whether `a` comes before `b`. Texts that differ in case or leading zeros alone are ordered by their bytes.
bool ComesBefore(const std::string& a, const std::string& b);

}  // namespace tdkplay
