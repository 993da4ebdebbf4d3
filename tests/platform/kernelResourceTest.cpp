// Resources of the running program, and what is made of damaged ones.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "platform/kernel/ResFile.h"
#include "tests/platform/resources/resource.h"

namespace {

TEST(Resource, IsFoundByTypeAndNumberInItsModule) {
    const HRSRC found = FindResourceA(nullptr, MAKEINTRESOURCEA(IDB_TRUE_COLOR), RT_BITMAP);
    ASSERT_NE(nullptr, found);
    EXPECT_EQ(64u, SizeofResource(nullptr, found));
    const void* data = LockResource(LoadResource(nullptr, found));
    ASSERT_NE(nullptr, data);
    DWORD headerSize = 0;
    std::memcpy(&headerSize, data, sizeof headerSize);
    EXPECT_EQ(40u, headerSize);
    EXPECT_EQ(found, FindResourceA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDB_TRUE_COLOR), RT_BITMAP));

    EXPECT_EQ(nullptr, FindResourceA(nullptr, MAKEINTRESOURCEA(IDB_TRUE_COLOR), RT_DIALOG));
    EXPECT_EQ(nullptr, FindResourceA(nullptr, MAKEINTRESOURCEA(999), RT_BITMAP));
    EXPECT_EQ(ERROR_RESOURCE_NAME_NOT_FOUND, GetLastError());
    // A module without resources, a handle that is none, a module that has gone.
    HMODULE layer = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCSTR>(&FindResourceA), &layer);
    const HMODULE addOn = LoadLibraryA(STAGE_DIR "/tdkviz.so");
    EXPECT_NE(nullptr, FindResourceA(addOn, MAKEINTRESOURCEA(273), RT_DIALOG));
    FreeLibrary(addOn);
    for (const HMODULE module : {layer, reinterpret_cast<HMODULE>(uintptr_t{0x1000}), addOn})
        EXPECT_EQ(nullptr, FindResourceA(module, MAKEINTRESOURCEA(273), RT_DIALOG));
}

TEST(Resource, StringsAreCutToTheBufferAtAWholeCharacter) {
    const struct {
        UINT id;
        INT size;
        const char* expected;
    } cases[] = {{1, 64, "One"},      {15, 64, "Fifteen"},  {16, 64, "Sixteen"},   {17, 64, "caf\u00E9 \U0001F600!"},
                 {65535, 64, "Last"}, {2, 64, ""},          {31, 64, ""},          {33, 64, ""},
                 {65537, 64, ""},     {16, 8, "Sixteen"},   {16, 5, "Sixt"},       {16, 1, ""},
                 {17, 5, "caf"},      {17, 6, "caf\u00E9"}, {17, 10, "caf\u00E9 "}};
    for (const auto& c : cases) {
        char text[64];
        std::memset(text, '#', sizeof text);
        EXPECT_EQ(static_cast<INT>(std::strlen(c.expected)), LoadStringA(nullptr, c.id, text, c.size)) << c.id;
        EXPECT_STREQ(c.expected, text) << c.id << ", " << c.size;
        if (c.size < 64) {
            EXPECT_EQ('#', text[c.size]) << c.id;
        }
    }
    char untouched = '#';
    EXPECT_EQ(0, LoadStringA(nullptr, 1, &untouched, 0));
    EXPECT_EQ('#', untouched);
}

TEST(Resource, BitmapsTakeAnyColor) {
    const struct {
        int id, width;
        COLORREF pixels[2][3];
    } cases[] = {
        {IDB_TRUE_COLOR, 3, {{0x111213, 0x141516, 0x171819}, {0x010203, 0x040506, 0x070809}}},
        {IDB_INDEXED, 2, {{RGB(255, 0, 255), RGB(0, 192, 0), CLR_INVALID}, {RGB(192, 0, 0), 0, CLR_INVALID}}},
    };
    const HDC dc = CreateCompatibleDC(nullptr);
    for (const auto& c : cases) {
        const HBITMAP bitmap = LoadBitmapA(nullptr, MAKEINTRESOURCEA(c.id));
        BITMAP description = {};
        ASSERT_NE(0, GetObjectA(bitmap, sizeof description, &description));
        EXPECT_EQ(c.width, description.bmWidth);
        EXPECT_EQ(2, description.bmHeight);
        const HGDIOBJ former = SelectObject(dc, bitmap);
        for (int y = 0; y < 2; ++y) {
            for (int x = 0; x < 3; ++x) EXPECT_EQ(c.pixels[y][x], GetPixel(dc, x, y)) << c.id << ": " << x << ", " << y;
        }
        SetPixel(dc, 1, 1, RGB(1, 2, 3));
        EXPECT_EQ(RGB(1, 2, 3), GetPixel(dc, 1, 1));
        SelectObject(dc, former);
        EXPECT_TRUE(DeleteObject(bitmap));
    }
    DeleteDC(dc);
    for (int id = IDB_NO_PIXELS; id <= IDB_HUGE; ++id) {
        EXPECT_NE(nullptr, FindResourceA(nullptr, MAKEINTRESOURCEA(id), RT_BITMAP)) << id;
        EXPECT_EQ(nullptr, LoadBitmapA(nullptr, MAKEINTRESOURCEA(id))) << id;
    }
}

// ---- Damage. Each trial's bytes stand in a block of just their size, so that a read beyond it is seen.

using Bytes = std::vector<uint8_t>;

void Put(Bytes& file, const std::u16string& units) {
    for (const char16_t unit : units) {
        file.push_back(static_cast<uint8_t>(unit));
        file.push_back(static_cast<uint8_t>(unit >> 8));
    }
}

void PutEntry(Bytes& file, const std::u16string& names, const std::u16string& data) {
    const auto headerUnits = static_cast<char16_t>(24 + names.size() * 2);
    Put(file, {static_cast<char16_t>(data.size() * 2), 0, headerUnits, 0});
    Put(file, names + std::u16string(8, u'\0') + data + std::u16string(data.size() % 2, u'\0'));
}

Bytes MakeFile() {
    Bytes file;
    PutEntry(file, {0xFFFF, 0, 0xFFFF, 0}, u"");
    PutEntry(file, {u'T', u'Y', 0, 0xFFFF, 7, 0}, u"odd");
    PutEntry(file, {0xFFFF, 6, 0xFFFF, 1}, {0, 3, u'O', u'n', u'e', 2, u'T', u'w', 0, 0, 1, u'!'});
    PutEntry(file, {0xFFFF, 5, 0xFFFF, 273}, u"dialog");
    return file;
}

// Finds what there is; false if something reaches out of the file.
bool Explore(const Bytes& file) {
    bool inside = true;
    for (const uint16_t type : {uint16_t{0}, uint16_t{5}, uint16_t{6}, uint16_t{7}}) {
        for (const uint16_t name : {uint16_t{0}, uint16_t{1}, uint16_t{7}, uint16_t{273}}) {
            const tdkp::ResBytes entry = tdkp::FindResEntry(file, type, name);
            if (entry.empty()) continue;
            const tdkp::ResBytes data = tdkp::ResEntryData(entry.data());
            inside = inside && data.data() + data.size() <= file.data() + file.size();
            for (uint16_t id = 0; id < tdkp::kStringsPerBlock; ++id)
                inside = inside && tdkp::StringInBlock(data, id).size() <= data.size() / 2;
        }
    }
    return inside;
}

TEST(ResFile, DamageIsNotFoundAndNothingIsReadOutside) {
    const Bytes whole = MakeFile();
    const tdkp::ResBytes block = tdkp::FindResEntry(whole, 6, 1);
    ASSERT_FALSE(block.empty());
    EXPECT_EQ(u"One", tdkp::StringInBlock(tdkp::ResEntryData(block.data()), 1));
    EXPECT_EQ(u"!", tdkp::StringInBlock(tdkp::ResEntryData(block.data()), 5));
    EXPECT_EQ(u"", tdkp::StringInBlock(tdkp::ResEntryData(block.data()), 15));
    ASSERT_FALSE(tdkp::FindResEntry(whole, 5, 273).empty()) << "behind an entry of odd length and a named type";
    for (size_t length = 0; length < whole.size(); ++length) {
        EXPECT_TRUE(Explore(Bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length)))) << length;
    }
    std::mt19937 random(20);
    for (int trial = 0; trial < 20000; ++trial) {
        Bytes damaged = whole;
        for (unsigned count = random() % 4 + 1; count > 0; --count) {
            constexpr uint8_t kValues[] = {0, 1, 4, 0x20, 0x7F, 0x80, 0xFC, 0xFF};
            damaged[random() % damaged.size()] = kValues[random() % std::size(kValues)];
        }
        ASSERT_TRUE(Explore(damaged)) << trial;
    }
}

}  // namespace
