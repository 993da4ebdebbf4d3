#include "src/support/RegistryKey.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "tests/support/TemporaryFolder.h"

namespace tdkviz {
namespace {

constexpr char kKey[] = "Software\\Corvane\\RegistryKeyTest";

class RegistryKeyTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(kRegistryIsTheTests);
        RegDeleteTreeA(HKEY_CURRENT_USER, kKey);
        ASSERT_TRUE(key_.Open(HKEY_CURRENT_USER, kKey));
    }
    // What GetString leaves in a buffer of 5 bytes, with a mark behind it.
    std::string Read(const char* name, const char* fallback, bool expected) {
        char out[6] = "?????";
        EXPECT_EQ(key_.GetString(name, fallback, out, 5), expected);
        EXPECT_EQ(out[5], 0);
        return std::string(out, 5);
    }

    RegistryKey key_;
};

TEST_F(RegistryKeyTest, Strings) {
    EXPECT_EQ(Read("Missing", "ab", false), std::string("ab\0\0\0", 5));
    const struct {
        const char* stored;
        bool fits;
        std::string expected;
    } cases[] = {
        {"", true, std::string(5, '\0')},
        {"abc", true, std::string("abc\0\0", 5)},
        {"abcde", true, "abcde"},  // to the last byte, without a terminator
        {"abcdef", false, std::string("d\0\0\0\0", 5)},
    };
    for (const auto& c : cases) {
        EXPECT_TRUE(key_.SetString("Text", c.stored));
        EXPECT_EQ(Read("Text", "d", c.fits), c.expected) << c.stored;
    }
    key_.SetNumber("Text", 7);
    EXPECT_EQ(Read("Text", "longer", false), "longe");
}

TEST_F(RegistryKeyTest, ReadingMakesTheKey) {
    const std::string below = std::string(kKey) + "\\Below";
    uint32_t number = 0;
    EXPECT_FALSE(ReadNumberSetting("Value", 4, &number, below.c_str()));
    EXPECT_EQ(number, 4u);
    HKEY opened = nullptr;
    EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, below.c_str(), 0, KEY_READ, &opened), LSTATUS{ERROR_SUCCESS});
    RegCloseKey(opened);
}

}  // namespace
}  // namespace tdkviz
