#include "src/audio/AudioHook.h"

#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include "tests/audio/FakeHost.h"

namespace tdkviz::test {
namespace {

struct CountingHook : CKVAAudioHook {
    using CKVAAudioHook::CKVAAudioHook;
    ~CountingHook() override { Detach(); }
    void ProcessFormat(KVAAudioFormat*) override { ++Formats; }
    void ProcessData(KVAAudioData*, KVAAudioData*) override {
        ++Deliveries;
        if (OnData) OnData();
    }
    std::atomic<int> Formats{0};
    std::atomic<int> Deliveries{0};
    std::function<void()> OnData;
};

TEST(AudioHook, AnswersForItsInterfaces) {
    CountingHook hook(nullptr);
    IUnknown* const primary = static_cast<IKVAAudioHook*>(&hook);
    IUnknown* const secondary = static_cast<ITKAudioHook*>(&hook);
    for (const GUID& id : {kIID_IUnknown, kIID_IKVAAudioHook, kIID_IKVAAudioHookAlias, kIID_ITKAudioHook}) {
        void* out = nullptr;
        EXPECT_EQ(secondary->QueryInterface(id, &out), S_OK);
        EXPECT_EQ(out, id == kIID_ITKAudioHook ? secondary : primary);
        EXPECT_EQ(hook.Release(), 0u);
    }
    void* none = &hook;
    EXPECT_EQ(primary->QueryInterface(kIID_ITKPlayer, &none), E_NOINTERFACE);
    EXPECT_EQ(none, nullptr);
}

TEST(AudioHook, CountsBelowZeroAndIgnoresWhatIsMissing) {
    CountingHook hook(nullptr);
    EXPECT_EQ(hook.Release(), 0u);
    EXPECT_EQ(hook.AddRef(), 0u);  // from -1
    EXPECT_EQ(hook.AddRef(), 1u);
    EXPECT_EQ(hook.OnAudioFormat(nullptr), S_OK);
    EXPECT_EQ(hook.Formats, 1);
    KVAAudioData empty{nullptr};
    EXPECT_EQ(hook.OnAudioData(nullptr, nullptr), S_OK);
    EXPECT_EQ(hook.OnAudioData(&empty, nullptr), S_OK);
    EXPECT_EQ(hook.Deliveries, 0);
    Deliver(hook, "x", 1);
    EXPECT_EQ(hook.Deliveries, 1);
}

TEST(AudioHook, RegistersOnceAndTriesAgainAfterAFailure) {
    FakeContext context;
    FakeHookService& service = context.AudioService.HookService;
    {
        CountingHook hook(&context);
        service.Result = E_FAIL;
        hook.Attach();
        service.Result = S_OK;
        hook.Attach();
        hook.Attach();
        EXPECT_EQ(service.Adds, 2);
        EXPECT_EQ(service.Flags, 1u);
        EXPECT_EQ(service.Hook, static_cast<IKVAAudioHook*>(&hook));
        service.Result = E_FAIL;
    }
    EXPECT_EQ(service.Removes, 1) << "a removal that failed isn't repeated";
    EXPECT_EQ(service.Hook, nullptr);
    EXPECT_EQ(service.References, 0);
    EXPECT_EQ(context.AudioService.References, 0);
    EXPECT_EQ(context.References, 0);
}

TEST(AudioHook, WithoutRegistrationTouchesNoHookService) {
    FakeContext context;
    { CountingHook hook(&context); }
    context.HasAudioService = false;
    {
        CountingHook hook(&context);
        hook.Attach();
    }
    CountingHook(nullptr).Attach();
    EXPECT_EQ(context.AudioService.HookService.Adds + context.AudioService.HookService.Removes, 0);
}

// A host may have taken the hook for a delivery just before it is withdrawn.
TEST(AudioHook, EndsAfterTheDeliveryUnderWayAndDropsLaterOnes) {
    FakeContext context;
    std::atomic<bool> inside{false}, leave{false}, left{false};
    int deliveriesAtRemoval = -1;
    std::thread audio;
    {
        CountingHook hook(&context);
        hook.Attach();
        hook.OnData = [&] {
            inside = true;
            while (!leave) std::this_thread::yield();
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            left = true;
        };
        context.AudioService.HookService.OnRemove = [&] {
            Deliver(hook, "late", 4);
            deliveriesAtRemoval = hook.Deliveries;
            leave = true;
        };
        audio = std::thread([&] { Deliver(hook, "now", 3); });
        while (!inside) std::this_thread::yield();
    }
    EXPECT_TRUE(left);
    EXPECT_EQ(deliveriesAtRemoval, 1);
    audio.join();
}

}  // namespace
}  // namespace tdkviz::test
