#include "src/support/NQBuffer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "src/support/RefPtr.h"

namespace tdkviz {
namespace {

class NQBufferTest : public testing::Test {
protected:
    bool IsInline() const {
        const auto* data = static_cast<const char*>(buffer_->GetBuffer());
        const auto* object = reinterpret_cast<const char*>(buffer_.Get());
        return data >= object && data < object + sizeof(CNQBuffer);
    }
    std::string Text() const { return {static_cast<const char*>(buffer_->GetBuffer()), buffer_->GetSize()}; }

    RefPtr<CNQBuffer> buffer_ = RefPtr<CNQBuffer>::Adopt(CNQBuffer::Create());
};

TEST_F(NQBufferTest, MovesBetweenTheFormsAndKeepsWhatFits) {
    const std::string letters = "abcdefghijklmnopqrst";
    EXPECT_EQ(buffer_->SetContents(letters.data(), 15), S_OK);
    EXPECT_TRUE(IsInline());
    EXPECT_EQ(buffer_->SetSize(16), S_OK);
    EXPECT_FALSE(IsInline());
    EXPECT_EQ(Text().substr(0, 15), letters.substr(0, 15));
    buffer_->SetSize(40);
    EXPECT_EQ(Text().substr(0, 15), letters.substr(0, 15));
    buffer_->SetSize(4);
    EXPECT_FALSE(IsInline());
    EXPECT_EQ(Text(), "abcd");
    buffer_->SetSize(10);
    EXPECT_TRUE(IsInline());
    EXPECT_EQ(Text(), "abcdefghij") << "contents move along";
    buffer_->SetContents(letters.data(), 20);
    buffer_->SetContents(letters.data(), 2);
    buffer_->SetContents(letters.data(), 20);
    EXPECT_EQ(Text(), letters) << "a block that was cut grows anew";
    EXPECT_EQ(buffer_->SetContents(nullptr, 0), S_OK);
    EXPECT_EQ(buffer_->GetSize(), 0u);
}

TEST_F(NQBufferTest, RefusesAndStaysAsItWas) {
    buffer_->SetContents("abc", 4);
    EXPECT_EQ(buffer_->SetContents(nullptr, 3), E_INVALIDARG);
    {
        const RefPtr<IKVABuffer> second = QueryFor<IKVABuffer>(buffer_.Get(), kIID_IKVABuffer);
        EXPECT_EQ(buffer_->SetSize(4), kBufferIsShared);
        EXPECT_EQ(buffer_->SetContents("x", 1), kBufferIsShared);
    }
    EXPECT_EQ(Text(), std::string("abc", 4));
    void* out = buffer_.Get();
    EXPECT_EQ(buffer_->QueryInterface(GUID{1, 2, 3, {}}, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(buffer_->SetSize(2), S_OK);
}

}  // namespace
}  // namespace tdkviz
