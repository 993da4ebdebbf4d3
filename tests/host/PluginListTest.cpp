// The manager's plug-in list while it is built.
#include <gtest/gtest.h>
#include <tdkplatform.h>
#include <tdkviz/host.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

#include "src/host/VizManager.h"
#include "src/support/Module.h"
#include "src/support/PathName.h"
#include "tests/support/TestObjects.h"

namespace tdkviz {
namespace {

// A host that is asked about a plug-in during the scan and leaves the answer to a thread that wants the list itself.
struct AskingHost final : test::StackObject<IUnknown> {
    IUnknown* Find(const GUID& id) override {
        if (id == kIID_ITKNameService && Manager) Ask();
        return id == kIID_IUnknown ? this : nullptr;
    }
    void Ask() {
        std::atomic<bool> done{false};
        uint32_t index = 0;
        EXPECT_EQ(Manager->GetPluginIndex("nowhere", &index), E_FAIL) << "the thread that builds";
        std::thread other([&] {
            EXPECT_EQ(Manager->GetPluginIndex("nowhere", &index), E_FAIL);
            done = true;
        });
        while (!done) TdkpAdvanceClock(100);
        other.join();
        ++Asked;
    }
    CVizManager* Manager = nullptr;
    int Asked = 0;
};

TEST(PluginListOfTheManager, IsBuiltOnceWithoutHoldingUpWhoTheBuilderWaitsFor) {
    const std::filesystem::path folder = GetExecutableDirectory().Append("Visualizations").ToString().GetText();
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "a.tkv") << "no plug-in";
    {
        AskingHost host;
        CVizManager manager(nullptr, nullptr, nullptr);
        host.Manager = &manager;
        HostContext = &host;
        manager.EnsurePluginList();
        HostContext = nullptr;
        manager.EnsurePluginList();
        EXPECT_EQ(host.Asked, 1);
        EXPECT_EQ(manager.GetPluginCount(), 1u);
    }
    std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace tdkviz
