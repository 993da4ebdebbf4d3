// Keys and values. Everything is made below one key, which goes again.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr const char* kBase = "Software\\RegistryTest";
constexpr LSTATUS kSuccess = ERROR_SUCCESS;

constexpr LSTATUS kNotFound = ERROR_FILE_NOT_FOUND;

class Key {
public:
    explicit Key(const std::string& below = "", REGSAM access = KEY_READ | KEY_WRITE) {
        const std::string path = below.empty() ? kBase : std::string(kBase) + "\\" + below;
        result =
            RegCreateKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, access, nullptr, &handle, &disposition);
    }
    ~Key() {
        if (handle != nullptr) RegCloseKey(handle);
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    LSTATUS Set(const char* name, DWORD type, const std::string& bytes) const {
        return RegSetValueExA(handle, name, 0, type, reinterpret_cast<const BYTE*>(bytes.data()),
                              static_cast<DWORD>(bytes.size()));
    }
    LSTATUS SetNumber(const char* name, DWORD number) const {
        return RegSetValueExA(handle, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof(number));
    }
    std::string Get(const char* name) const {
        BYTE data[1000];
        DWORD size = sizeof(data);
        if (RegQueryValueExA(handle, name, nullptr, nullptr, data, &size) != kSuccess) return "(none)";
        return std::string(reinterpret_cast<const char*>(data), size);
    }
    std::vector<std::string> SubKeys() const {
        std::vector<std::string> names;
        char name[256];
        DWORD length = sizeof(name);
        for (DWORD i = 0;; ++i, length = sizeof(name)) {
            if (RegEnumKeyExA(handle, i, name, &length, nullptr, nullptr, nullptr, nullptr) != kSuccess) break;
            names.emplace_back(name, length);
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    HKEY handle = nullptr;
    DWORD disposition = 0;
    LSTATUS result;
};

std::string Bytes(const char* text, size_t size) {
    return std::string(text, size);
}

class Registry : public testing::Test {
protected:
    void TearDown() override { RegDeleteTreeA(HKEY_CURRENT_USER, kBase); }
};

TEST_F(Registry, ValuesComeBackWithTypeAndSize) {
    struct Case {
        const char* name;
        DWORD type;
        std::string bytes;
    };
    const Case cases[] = {
        {"text", REG_SZ, Bytes("hello\0", 6)},       {"number", REG_DWORD, Bytes("\1\2\3\4", 4)},
        {"bytes", REG_BINARY, Bytes("\0a\0b", 4)},   {"nothing", REG_BINARY, ""},
        {"", REG_SZ, Bytes("unnamed\0", 8)},         {"\xC3\xA9'\"%", REG_SZ, Bytes("\xC3\xA9\0", 3)},
        {"long", REG_BINARY, std::string(900, 'x')},
    };
    const Key key;
    for (const Case& one : cases) EXPECT_EQ(kSuccess, key.Set(one.name, one.type, one.bytes)) << one.name;
    for (const Case& one : cases) {
        DWORD type = 99, size = 0;
        EXPECT_EQ(kSuccess, RegQueryValueExA(key.handle, one.name, nullptr, &type, nullptr, &size)) << one.name;
        EXPECT_EQ(one.type, type) << one.name;
        EXPECT_EQ(one.bytes.size(), size) << one.name;
        EXPECT_EQ(one.bytes, key.Get(one.name)) << one.name;
    }
    // A null name is the unnamed value.
    EXPECT_EQ(Bytes("unnamed\0", 8), key.Get(nullptr));
}

TEST_F(Registry, NamesDifferInMoreThanCase) {
    Key key("Case");
    key.SetNumber("Value", 1);
    key.SetNumber("VALUE", 2);
    const Key same("cASE");
    EXPECT_EQ(DWORD{REG_OPENED_EXISTING_KEY}, same.disposition);
    EXPECT_EQ(Bytes("\2\0\0\0", 4), same.Get("value"));
    DWORD values = 0;
    RegQueryInfoKeyA(same.handle, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &values, nullptr, nullptr,
                     nullptr, nullptr);
    EXPECT_EQ(1u, values);
}

TEST_F(Registry, ParentsAreMadeWithAChild) {
    const Key deep("a\\b\\c");
    ASSERT_EQ(kSuccess, deep.result);
    EXPECT_EQ(DWORD{REG_CREATED_NEW_KEY}, deep.disposition);
    EXPECT_EQ(DWORD{REG_OPENED_EXISTING_KEY}, Key("A\\B").disposition);
    EXPECT_EQ((std::vector<std::string>{"a"}), Key().SubKeys());
    HKEY opened = nullptr;
    EXPECT_EQ(kNotFound, RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\RegistryTest\\a\\x", 0, KEY_READ, &opened));
    EXPECT_EQ(kSuccess, RegOpenKeyExA(Key("a").handle, "b\\c", 0, KEY_READ, &opened));
    EXPECT_EQ(kSuccess, RegCloseKey(opened));
}

TEST_F(Registry, DeletingTakesWhatItSaysAndNoMore) {
    const Key key, gone("tree");
    for (const char* name : {"tree\\leaf\\x", "tree2", "tree]"}) Key(name).SetNumber("v", 2);
    EXPECT_NE(kSuccess, RegDeleteKeyA(key.handle, "tree"));
    EXPECT_EQ(kSuccess, RegDeleteTreeA(key.handle, "TREE"));
    EXPECT_EQ((std::vector<std::string>{"tree2", "tree]"}), key.SubKeys());
    EXPECT_NE(kSuccess, gone.SetNumber("v", 1));
    EXPECT_EQ("(none)", gone.Get("v"));
    EXPECT_EQ(Bytes("\2\0\0\0", 4), Key("tree2").Get("v"));
    EXPECT_EQ(kSuccess, RegDeleteValueA(Key("tree2").handle, "V"));
    EXPECT_EQ(kNotFound, RegDeleteValueA(Key("tree2").handle, "V"));
    EXPECT_EQ(kSuccess, RegDeleteKeyA(key.handle, "tree2"));
    EXPECT_EQ(kNotFound, RegDeleteKeyA(key.handle, "tree2"));
}

TEST_F(Registry, HandlesAreKnownFromOthers) {
    HKEY out = nullptr;
    EXPECT_NE(kSuccess, RegCloseKey(reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(0x123458))));
    EXPECT_NE(kSuccess, RegOpenKeyExA(nullptr, "x", 0, KEY_READ, &out));
    EXPECT_EQ(kSuccess, RegCloseKey(HKEY_CURRENT_USER));
    const Key reader("r", KEY_READ);
    EXPECT_EQ(LSTATUS{ERROR_ACCESS_DENIED}, reader.SetNumber("v", 1));
}

TEST_F(Registry, ThreadsKeepEachOthersValues) {
    const char* const names[] = {"0", "1", "2", "3"};
    std::vector<std::thread> threads;
    for (const char* name : names)
        threads.emplace_back([name] {
            for (DWORD i = 0; i < 20; ++i) Key("shared").SetNumber(name, i);
        });
    for (std::thread& thread : threads) thread.join();
    for (const char* name : names) EXPECT_EQ(Bytes("\x13\0\0\0", 4), Key("shared").Get(name)) << name;
}

}  // namespace
