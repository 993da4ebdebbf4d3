// The resource manager with two modules: the add-on, and this program, which translates a part of it.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include <tdkviz/resource_manager.h>

#include "tests/companions/resources/resource.h"

namespace {

constexpr uint32_t kTag = 1615, kOtherTag = 7;
constexpr uint32_t kDialog = 273, kLampLit = 110, kNoneSelected = 2;

constexpr uint32_t Id(uint32_t tag, uint32_t number) {
    return tag << 16 | number;
}

class ResourceManagerTest : public testing::Test {
protected:
    void SetUp() override {
        library_ = LoadLibraryA(STAGE_DIR "/nqrs3260.so");
        void* factory = reinterpret_cast<void*>(GetProcAddress(library_, kResourceManagerFactoryName));
        ASSERT_NE(factory, nullptr);
        create_ = reinterpret_cast<NQCreateInstanceFunction>(factory);
        ASSERT_EQ(create_(&manager_), S_OK);
        // Read as a file of resources only: its own attach has registered it, which is taken back here.
        addOn_ = LoadLibraryA(STAGE_DIR "/tdkviz.so");
        program_ = GetModuleHandleA(nullptr);
        manager_->RemoveModule(addOn_);
    }
    void TearDown() override {
        FreeLibrary(addOn_);
        EXPECT_EQ(manager_->Release(), 0u);
        FreeLibrary(library_);
    }
    std::string String(uint32_t id, uint32_t size = 64) {
        char text[64];
        std::memset(text, '#', sizeof text);
        const int32_t length = manager_->LoadString(id, text, size);
        EXPECT_EQ(length, static_cast<int32_t>(std::strlen(text)));
        if (size < sizeof text) {
            EXPECT_EQ(text[size], '#');
        }
        return text;
    }

    HMODULE library_ = nullptr, addOn_ = nullptr, program_ = nullptr;
    NQCreateInstanceFunction create_ = nullptr;
    INQResourceManager* manager_ = nullptr;
};

TEST_F(ResourceManagerTest, IsOneForTheProcess) {
    manager_->AddModule(addOn_, kTag);
    INQResourceManager* second = nullptr;
    EXPECT_EQ(create_(&second), S_OK);
    EXPECT_EQ(second, manager_);
    void* unknown = nullptr;
    EXPECT_EQ(second->QueryInterface(kIID_IUnknown, &unknown), S_OK);
    EXPECT_EQ(second->Release(), 3u) << "the test's, the add-on's, the one just asked for";
    EXPECT_EQ(second->Release(), 2u);
    EXPECT_EQ(second->QueryInterface(GUID{}, &unknown), E_NOINTERFACE);
    EXPECT_EQ(create_(nullptr), E_POINTER);
}

TEST_F(ResourceManagerTest, AsksTheLastModuleOfATagFirst) {
    EXPECT_EQ(String(Id(kTag, IDS_LABEL)), "");
    manager_->AddModule(addOn_, kTag);
    EXPECT_EQ(String(Id(kTag, IDS_LABEL)), "Visualization Settings");
    EXPECT_EQ(String(Id(kOtherTag, IDS_LABEL)), "");
    EXPECT_EQ(String(IDS_LABEL), "") << "tag 0 is a tag like any other";

    manager_->AddModule(program_, kTag);
    manager_->AddModule(program_, kOtherTag);
    EXPECT_EQ(String(Id(kTag, IDS_LABEL)), "Effekte");
    EXPECT_EQ(String(Id(kTag, kNoneSelected)), "None Selected") << "not translated";
    EXPECT_EQ(String(Id(kTag, IDS_OWN)), "Own");
    EXPECT_EQ(String(Id(kOtherTag, kNoneSelected)), "");
    manager_->AddModule(addOn_, kTag);
    EXPECT_EQ(String(Id(kTag, IDS_LABEL)), "Visualization Settings");

    manager_->RemoveModule(addOn_);
    EXPECT_EQ(String(Id(kTag, IDS_LABEL)), "Effekte");
    manager_->RemoveModule(program_);
    EXPECT_EQ(String(Id(kTag, IDS_LABEL)), "");
    EXPECT_EQ(String(Id(kOtherTag, IDS_LABEL)), "") << "from all of its tags";
}

TEST_F(ResourceManagerTest, GivesEachKindAndNothingForUnknownIds) {
    manager_->AddModule(addOn_, kTag);
    manager_->AddModule(program_, kTag);
    EXPECT_EQ(manager_->GetResourceInstance(Id(kTag, kDialog), kResourceKindDialog), addOn_);
    EXPECT_EQ(manager_->GetResourceInstance(Id(kTag, kLampLit), kResourceKindDialog), nullptr);
    EXPECT_EQ(manager_->GetResourceInstance(Id(kTag, kDialog), 5), nullptr);
    EXPECT_EQ(manager_->GetResourceInstance(kDialog, kResourceKindDialog), nullptr);
    const HBITMAP lamp = manager_->LoadBitmap(Id(kTag, kLampLit));
    EXPECT_TRUE(DeleteObject(lamp));
    EXPECT_EQ(manager_->LoadBitmap(Id(kTag, kDialog)), nullptr);
    for (const uint32_t size : {1u, 2u, 22u, 23u}) {
        EXPECT_EQ(String(Id(kTag, kNoneSelected), size), std::string("None Selected").substr(0, size - 1));
    }
    char untouched = '#';
    EXPECT_EQ(manager_->LoadString(Id(kTag, kNoneSelected), &untouched, 0), 0);
    EXPECT_EQ(untouched, '#');
    EXPECT_EQ(manager_->LoadString(Id(kTag, kNoneSelected), nullptr, 10), 0);
}

TEST_F(ResourceManagerTest, ServesManyThreads) {
    manager_->AddModule(addOn_, kTag);
    std::vector<std::thread> threads;
    for (uint32_t tag = 1; tag <= 4; ++tag) {
        threads.emplace_back([this, tag] {
            for (int i = 0; i < 300; ++i) {
                INQResourceManager* manager = nullptr;
                create_(&manager);
                manager->AddModule(program_, tag);
                char text[64];
                manager->LoadString(Id(tag, IDS_LABEL), text, sizeof text);
                EXPECT_EQ(manager->LoadString(Id(kTag, IDS_LABEL), text, sizeof text), 22);
                if (tag == 1) manager->RemoveModule(program_);
                manager->Release();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
}

}  // namespace
