#include "src/support/NQString.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace tdkviz {
namespace {

uint8_t Byte(const CNQString& text, size_t index) {
    return reinterpret_cast<const uint8_t*>(&text)[index];
}
uint8_t Sharers(const CNQString& text) {
    return reinterpret_cast<const uint8_t*>(text.GetText())[-1];
}

TEST(NQString, FormsByLength) {
    const struct {
        const char* text;
        uint8_t formByte;
    } cases[] = {{"", 7}, {"abc", 4}, {"1234567", 0}, {"12345678", 255}, {nullptr, 7}};
    for (const auto& c : cases) {
        const CNQString text(c.text);
        EXPECT_EQ(Byte(text, 7), c.formByte);
        EXPECT_STREQ(text.GetText(), c.text ? c.text : "");
    }
    EXPECT_EQ(CNQString(nullptr, -1).GetLength(), 0);
    EXPECT_EQ(CNQString("abcdef", 3), "abc");
    EXPECT_EQ(Byte(CNQString("abcdef", 0), 0), 0);
}

TEST(NQString, CopiesShareUntilTheCountIsFull) {
    const CNQString first("a longer text");
    EXPECT_EQ(Sharers(first), 1);
    std::vector<CNQString> copies(254, first);
    EXPECT_EQ(Sharers(first), 255);
    EXPECT_EQ(copies.back().GetText(), first.GetText());
    const CNQString deep(first);
    EXPECT_NE(deep.GetText(), first.GetText());
    EXPECT_EQ(Sharers(deep), 1);
    EXPECT_EQ(deep, first);
    copies.clear();
    EXPECT_EQ(Sharers(first), 1);
}

TEST(NQString, PartsAreCutToTheText) {
    const CNQString text("folder/file.name.ext");
    EXPECT_EQ(text.Find('.'), 11);
    EXPECT_EQ(text.ReverseFind('.'), 16);
    EXPECT_EQ(text.Find('#'), -1);
    EXPECT_EQ(text.Mid(7, 4), "file");
    EXPECT_EQ(text.Mid(17, 100), "ext");
    EXPECT_EQ(text.Mid(100, 5), "");
    EXPECT_EQ(text.Mid(3, -1), "");
    EXPECT_EQ(text.Left(100), text);
    EXPECT_EQ(text.Right(100), text);
    EXPECT_EQ(text.Right(4), ".ext");
}

// Random operations on a few values that share and part, beside std::string.
TEST(NQString, BehavesLikeAString) {
    std::mt19937 random(7);
    CNQString texts[4];
    std::string models[4];
    for (int i = 0; i < 20000; ++i) {
        const size_t at = random() % 4;
        const size_t other = random() % 4;
        switch (random() % 8) {
            case 0:
                texts[at] = texts[other], models[at] = models[other];
                break;
            case 1:
                texts[at] += texts[other], models[at] += models[other];
                break;
            case 2:
                texts[at] += texts[at].GetText() + texts[at].GetLength() / 2,
                    models[at] += models[at].substr(models[at].size() / 2);
                break;
            case 3:
                texts[at] = texts[at] + 'x', models[at] += 'x';
                break;
            case 4:
                texts[at] = "short", models[at] = "short";
                break;
            case 5:
                texts[at] = texts[other].Mid(1, 9),
                models[at] = models[other].empty() ? "" : models[other].substr(1, 9);
                break;
            case 6:
                texts[at].GetBuffer(texts[at].GetLength() +
                                    1)[texts[at].GetLength()] = 'y',
                                    texts[at].ReleaseBuffer(static_cast<int32_t>(models[at].size()) + 1),
                                    models[at] += 'y';
                break;
            default:
                texts[at].Empty(), models[at].clear();
                break;
        }
        ASSERT_EQ(models[at], texts[at].GetText());
        ASSERT_EQ(models[at].size(), static_cast<size_t>(texts[at].GetLength()));
        if (models[at].size() > 500) texts[at] = (models[at] = "again").c_str();
    }
    for (int i = 0; i < 4; ++i) EXPECT_EQ(models[i], texts[i].GetText());
}

}  // namespace
}  // namespace tdkviz
