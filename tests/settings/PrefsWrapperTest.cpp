#include "src/settings/PrefsWrapper.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "src/support/RefPtr.h"
#include "src/support/RegistryKey.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestObjects.h"

namespace tdkviz {
namespace {

constexpr char kKey[] = "Software\\Corvane\\PrefsWrapperTest";
constexpr size_t kLongest = 9216;

class PrefsWrapperTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(kRegistryIsTheTests);
        RegDeleteTreeA(HKEY_CURRENT_USER, kKey);
    }
    HRESULT Write(const std::string& bytes) {
        test::FakeBuffer buffer(bytes.data(), bytes.size());
        return preferences_->WriteValue("Value", &buffer);
    }
    // The bytes, or "none" where the buffer is to be null.
    std::string Read(const char* name) {
        IKVABuffer* buffer = reinterpret_cast<IKVABuffer*>(this);
        const HRESULT result = preferences_->ReadValue(name, &buffer);
        EXPECT_EQ(result, buffer ? S_OK : E_FAIL);
        if (!buffer) return "none";
        const std::string bytes(static_cast<const char*>(buffer->GetBuffer()), buffer->GetSize());
        EXPECT_EQ(buffer->Release(), 0u);
        return bytes;
    }

    const RefPtr<CIKVAPrefsWrapper> preferences_{new CIKVAPrefsWrapper(kKey)};
};

TEST_F(PrefsWrapperTest, TextsComeBackWithTheirTerminator) {
    const struct {
        std::string written, read;
    } cases[] = {
        {"", std::string(1, '\0')},
        {std::string("abc\0def\0", 8), std::string("abc\0", 4)},
        {"no end", std::string("no end\0", 7)},
        {"\xC3\xA9\xE6\x97\xA5", std::string("\xC3\xA9\xE6\x97\xA5\0", 6)},
        {std::string(kLongest, 'x'), std::string(kLongest, 'x') + '\0'},
        {std::string(kLongest + 1, 'x'), "none"},
    };
    EXPECT_EQ(Read("Value"), "none");
    for (const auto& one : cases) {
        EXPECT_EQ(Write(one.written), S_OK);
        EXPECT_EQ(Read("Value"), one.read) << one.written.size();
    }
    RegistryKey key;
    key.Open(HKEY_CURRENT_USER, kKey);
    key.SetNumber("Number", 5);
    EXPECT_EQ(Read("Number"), "none");
}

TEST_F(PrefsWrapperTest, NullsAreRefusedAndWriteNothing) {
    Write("kept");
    test::FakeBuffer buffer("x", 2);
    IKVABuffer* out = &buffer;
    EXPECT_EQ(preferences_->WriteValue("Value", nullptr), E_INVALIDARG);
    EXPECT_EQ(preferences_->WriteValue(nullptr, &buffer), E_INVALIDARG);
    EXPECT_EQ(preferences_->ReadValue(nullptr, &out), E_INVALIDARG);
    EXPECT_EQ(Read("Value"), std::string("kept\0", 5));
}

}  // namespace
}  // namespace tdkviz
