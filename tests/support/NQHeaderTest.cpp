#include "src/support/NQHeader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "src/support/NQBuffer.h"
#include "src/support/RefPtr.h"

namespace tdkviz {
namespace {

RefPtr<IKVABuffer> NewBuffer() {
    return RefPtr<IKVABuffer>::Adopt(CNQBuffer::Create());
}

// The holders of a buffer beside the caller's pointer.
ULONG HoldersOf(const RefPtr<IKVABuffer>& buffer) {
    buffer->AddRef();
    return buffer->Release() - 1;
}

class NQHeaderTest : public testing::Test {
protected:
    std::vector<std::string> NumberKeys() {
        std::vector<std::string> keys;
        const char* key = nullptr;
        uint32_t value = 0;
        for (HRESULT r = bag_->GetFirstNumber(&key, &value); r == S_OK; r = bag_->GetNextNumber(&key, &value)) {
            keys.emplace_back(key);
        }
        return keys;
    }
    std::vector<std::string> TextKeys() {
        std::vector<std::string> keys;
        const char* key = nullptr;
        RefPtr<IKVABuffer> text;
        for (HRESULT r = bag_->GetFirstTextValue(&key, text.Receive()); r == S_OK;
             r = bag_->GetNextTextValue(&key, text.Receive())) {
            keys.emplace_back(key);
        }
        return keys;
    }

    RefPtr<CNQHeader> bag_ = RefPtr<CNQHeader>::Adopt(CNQHeader::Create());
};

TEST_F(NQHeaderTest, OneKeyHasThreeSlots) {
    uint32_t number = 9;
    RefPtr<IKVABuffer> found;
    EXPECT_EQ(bag_->GetNumber("Rate", &number), E_FAIL);
    EXPECT_EQ(number, 9u);
    EXPECT_EQ(bag_->SetNumber("Rate", 4), S_OK);
    EXPECT_EQ(bag_->SetNumber("RATE", 5), S_OK);
    EXPECT_EQ(bag_->GetNumber("rate", &number), S_OK);
    EXPECT_EQ(number, 5u);
    EXPECT_EQ(bag_->GetBufferValue("Rate", found.Receive()), E_FAIL);
    const auto buffer = NewBuffer();
    EXPECT_EQ(bag_->SetBufferValue("rAte", buffer.Get()), S_OK);
    EXPECT_EQ(bag_->GetTextValue("Rate", found.Receive()), E_FAIL);
    EXPECT_EQ(bag_->GetBufferValue("Rate", found.Receive()), S_OK);
    EXPECT_EQ(found.Get(), buffer.Get());
    EXPECT_EQ(NumberKeys(), std::vector<std::string>{"Rate"}) << "the first spelling stays";
}

TEST_F(NQHeaderTest, EachKindIsWalkedByItself) {
    EXPECT_TRUE(NumberKeys().empty());
    bag_->SetNumber("b", 1);
    bag_->SetNumber("A", 2);
    bag_->SetTextValue("c", NewBuffer().Get());
    bag_->SetTextValue("a", NewBuffer().Get());
    bag_->SetNumber("D", 3);
    EXPECT_EQ(NumberKeys(), (std::vector<std::string>{"A", "b", "D"}));
    EXPECT_EQ(TextKeys(), (std::vector<std::string>{"A", "c"}));
    const char* key = nullptr;
    uint32_t number = 0;
    EXPECT_EQ(bag_->GetFirstNumber(&key, &number), S_OK);
    EXPECT_EQ(TextKeys().size(), 2u);
    EXPECT_EQ(bag_->GetNextNumber(&key, &number), S_OK);
    EXPECT_STREQ(key, "b");
    for (int i = 0; i < 50; ++i) bag_->SetNumber(("e" + std::to_string(i)).c_str(), 0);
    EXPECT_STREQ(key, "b") << "a key that was given out stays good";
    EXPECT_EQ(bag_->GetNextNumber(&key, &number), E_FAIL) << "a Set ends the walk";
}

TEST_F(NQHeaderTest, HoldsAndLetsGoOfBuffers) {
    const auto first = NewBuffer();
    const auto second = NewBuffer();
    EXPECT_EQ(bag_->SetBufferValue("k", nullptr), E_FAIL);
    EXPECT_EQ(bag_->SetBufferValue(nullptr, first.Get()), E_FAIL);
    bag_->SetBufferValue("k", first.Get());
    bag_->SetBufferValue("k", first.Get());
    bag_->SetTextValue("k", first.Get());
    EXPECT_EQ(HoldersOf(first), 2u);
    bag_->SetBufferValue("k", second.Get());
    EXPECT_EQ(HoldersOf(first), 1u);
    bag_.Reset();
    EXPECT_EQ(HoldersOf(first), 0u);
    EXPECT_EQ(HoldersOf(second), 0u);
}

}  // namespace
}  // namespace tdkviz
