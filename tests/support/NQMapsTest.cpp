#include "src/support/NQMaps.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <vector>

#include "src/support/StringTable.h"

namespace tdkviz {
namespace {

std::vector<uintptr_t> Keys(const CNQMapPtrToPtr& map) {
    std::vector<uintptr_t> keys;
    uintptr_t key = 0;
    uintptr_t value = 0;
    for (intptr_t position = map.GetStartPosition(); position != 0;) {
        map.GetNext(position, key, value);
        keys.push_back(key);
    }
    return keys;
}

TEST(NQMapStringToString, HashTakesBytesAsSignedNumbers) {
    const std::pair<const char*, uint32_t> cases[] = {{"", 0}, {"ab", 97u * 33 + 98}, {"\xFF", 0xFFFFFFFFu}};
    for (const auto& [text, hash] : cases) EXPECT_EQ(HashMapText(text), hash) << text;
}

TEST(NQMapPtrToPtr, OrderIsByBucketThenNewestFirst) {
    CNQMapPtrToPtr map(10);
    uintptr_t value = 99;
    EXPECT_FALSE(map.Lookup(1, value));
    EXPECT_EQ(map.GetStartPosition(), 0);
    map.Set(0x20, 1);
    map.Set(0x10, 2);
    map.Set(0x120, 3);  // bucket 1, as 0x10
    EXPECT_EQ(Keys(map), (std::vector<uintptr_t>{0x120, 0x10, 0x20}));
    map.Set(0x10, 4);
    EXPECT_EQ(Keys(map), (std::vector<uintptr_t>{0x120, 0x10, 0x20})) << "a new value doesn't move the entry";
    EXPECT_EQ(map.GetCount(), 3u);
    EXPECT_TRUE(map.Lookup(0x10, value));
    EXPECT_EQ(value, 4u);
}

TEST(NQMapPtrToPtr, BehavesLikeAMapWhileEntriesGoDuringTheWalk) {
    std::mt19937 random(3);
    CNQMapPtrToPtr map(10);
    std::map<uintptr_t, uintptr_t> model;
    for (int i = 0; i < 5000; ++i) {
        const uintptr_t key = (random() % 64) << 4;
        if (random() % 3 != 0) {
            map.Set(key, i);
            model[key] = i;
        } else {
            ASSERT_EQ(map.Remove(key), model.erase(key) == 1);
        }
        ASSERT_EQ(map.GetCount(), model.size());
    }
    uintptr_t key = 0;
    uintptr_t value = 0;
    for (intptr_t position = map.GetStartPosition(); position != 0;) {
        map.GetNext(position, key, value);
        ASSERT_EQ(model.at(key), value);
        model.erase(key);
        map.Remove(key);
    }
    EXPECT_TRUE(model.empty());
    EXPECT_EQ(map.GetCount(), 0u);
}

TEST(StringTable, CaseFoldsOnlyWithinABucket) {
    CStringTable one(2);
    EXPECT_EQ(one.Insert("Name", 1), one.Insert("NAME", 2)) << "the same bucket, one key";
    CStringTable many(16);
    EXPECT_EQ(many.Insert("", 1)->Hash, 12798u);
    // Upper and lower case of one letter are 32 apart: the same bucket of 16.
    EXPECT_EQ(many.Insert("x", 1), many.Insert("X", 2));
    CStringTable odd(33);
    EXPECT_NE(odd.Insert("x", 1), odd.Insert("X", 2));
}

}  // namespace
}  // namespace tdkviz
