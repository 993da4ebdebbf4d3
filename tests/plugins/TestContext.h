// A host's context for plug-ins: keeps a log of what they were told, and serves the text for their files.
#pragma once

#include <gtest/gtest.h>
#include <tdkviz/host.h>

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "src/support/Module.h"
#include "tests/plugins/testplugins/TestPlugin.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestObjects.h"

using CallLog = std::vector<std::string>;

// Stands as the module's HostContext while it lives. Not counted.
class TestContext final : public tdkviz::test::StackObject<ITestLog, ITKNameService, ITKNameCatalog, ITKNameEntry> {
public:
    TestContext() { tdkviz::HostContext = static_cast<ITestLog*>(this); }
    ~TestContext() { tdkviz::HostContext = nullptr; }

    IUnknown* Find(const GUID& id) override {
        if (id == kIID_ITestLog || id == kIID_IUnknown) return static_cast<ITestLog*>(this);
        if (id == kIID_ITKNameService) return static_cast<ITKNameService*>(this);
        return id == kIID_ITKNameEntry ? static_cast<ITKNameEntry*>(this) : nullptr;
    }
    void Note(const char* text) override {
        const std::lock_guard hold(mutex_);
        log_.emplace_back(text);
    }
    HRESULT GetCatalog(IUnknown** out) override {
        *out = static_cast<ITKNameCatalog*>(this);
        return S_OK;
    }
    HRESULT GetEntry(const GUID& id, IUnknown** out) override {
        *out = static_cast<ITKNameEntry*>(this);
        return id == kIID_ITKNameEntry ? S_OK : E_FAIL;
    }
    HRESULT GetHostString(const char* path, char** text) override {
        hostString_ = "for " + std::filesystem::path(path).filename().string();
        *text = hostString_.data();
        return S_OK;
    }

    // What was noted since the last time.
    CallLog Take() {
        const std::lock_guard hold(mutex_);
        return std::exchange(log_, {});
    }

private:
    std::mutex mutex_;
    CallLog log_;
    std::string hostString_;
};

inline std::string TestPluginPath(const std::string& name) {
    return (std::filesystem::path(TEST_PLUGIN_DIR) / name).string();
}

inline void EmptyPluginCache() {
    RegDeleteTreeA(HKEY_CURRENT_USER, "Software\\Corvane\\Visualizations");
}

// Begins with nothing in the cache.
class PluginCacheTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(kRegistryIsTheTests);
        EmptyPluginCache();
    }
};
