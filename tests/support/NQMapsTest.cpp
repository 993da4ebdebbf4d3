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

TEST(NQMapPtrToPtr, EntriesAreRecycled) {
    CNQMapPtrToPtr map(2);
    const auto placeOf = [&map](uintptr_t wanted) {
        uintptr_t key = 0;
        uintptr_t value = 0;
        for (intptr_t position = map.GetStartPosition(), place = 0; position != 0;) {
            place = position;
            map.GetNext(position, key, value);
            if (key == wanted) return place;
        }
        return intptr_t{0};
    };
    for (uintptr_t i = 1; i <= 3; ++i) map.Set(i << 4, i);
    const intptr_t place = placeOf(0x30);
    EXPECT_TRUE(map.Remove(0x30));
    EXPECT_FALSE(map.Remove(0x30));
    map.Set(0x40, 4);
    EXPECT_EQ(placeOf(0x40), place);
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

TEST(NQMapStringToString, KeysDifferByCaseAndRemoveAllStartsAnew) {
    CNQMapStringToString map(2);
    for (int round = 0; round < 2; ++round) {
        map.Set("DT_Common", "first");
        map.Set("DT_Common", "second");
        map.Set("dt_common", "third");
        map.Set("a key that is longer than seven bytes", "a value that is longer than seven bytes");
        CNQString value;
        EXPECT_TRUE(map.Lookup("DT_Common", value));
        EXPECT_EQ(value, "second");
        EXPECT_FALSE(map.Lookup("DT_COMMON", value));
        EXPECT_EQ(value, "second");
        EXPECT_EQ(map.GetCount(), 3u);
        map.RemoveAll();
        EXPECT_EQ(map.GetStartPosition(), 0);
        EXPECT_FALSE(map.Lookup("DT_Common", value));
    }
}

TEST(NQMapStringToString, HashTakesBytesAsSignedNumbers) {
    EXPECT_EQ(HashMapText(""), 0u);
    EXPECT_EQ(HashMapText("ab"), 97u * 33 + 98);
    EXPECT_EQ(HashMapText("\xFF"), 0xFFFFFFFFu);
}

TEST(StringTable, GrowsAtTwoThirds) {
    CStringTable table(16);
    for (int i = 0; i < 10; ++i) table.Insert(std::to_string(i).c_str(), i);
    EXPECT_EQ(table.GetBucketCount(), 16u);
    table.Insert("0", 77);
    EXPECT_EQ(table.GetBucketCount(), 16u) << "a key that is there doesn't count";
    CStringTable::Node* const third = table.Find("3");
    for (int i = 10; i < 200; ++i) {
        table.Insert(std::to_string(i).c_str(), i);
        if (i == 10) {
            EXPECT_EQ(table.GetBucketCount(), 33u);
        }
    }
    EXPECT_EQ(table.Find("3"), third);
    for (int i = 0; i < 200; ++i) EXPECT_EQ(table.Find(std::to_string(i).c_str())->Value, static_cast<uint32_t>(i));
    EXPECT_EQ(table.Find("200"), nullptr);
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
