// A host as small as the audio room needs it: context, player, engine with delay, hook service, buffers.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include <tdkviz/host.h>

#include "tests/support/TestObjects.h"

namespace tdkviz::test {

struct FakeDelay : StackObject<IKVAAudioDelay> {
    HRESULT GetConfiguredDelay(uint32_t* milliseconds) override {
        *milliseconds = Configured;
        return S_OK;
    }
    HRESULT GetCurrentDelay(uint32_t* milliseconds) override {
        *milliseconds = Current;
        if (OnAsked) OnAsked();
        return S_OK;
    }
    uint32_t Configured = 0;
    uint32_t Current = 0;
    std::function<void()> OnAsked;
};

struct FakeEngine : StackObject<ITKPlaybackEngine> {
    explicit FakeEngine(FakeDelay* delay) : Delay(delay) {}
    uint32_t GetState() override { return kEngineStatePlaying; }
    uint32_t QueryEngineFlag(uint32_t) override { return 1; }
    HRESULT GetPreferences(IKVAValues**) override { return E_FAIL; }
    IUnknown* Find(const GUID& id) override { return id == kIID_IKVAAudioDelay ? Delay : nullptr; }
    FakeDelay* Delay;
};

struct FakePlayer : StackObject<ITKPlayer> {
    IUnknown* GetPlaybackEngine() override { return Engine; }
    HRESULT AddEngineObserver(ITKPlaybackEngineObserver*) override { return S_OK; }
    HRESULT RemoveEngineObserver(ITKPlaybackEngineObserver*) override { return S_OK; }
    FakeEngine* Engine = nullptr;
};

struct FakeHookService : StackObject<IKVAAudioHookService> {
    HRESULT AddHook(IKVAAudioHook* hook, uint32_t flags) override {
        ++Adds;
        Flags = flags;
        if (SUCCEEDED(Result)) Hook = hook;
        return Result;
    }
    HRESULT RemoveHook(IKVAAudioHook* hook) override {
        ++Removes;
        if (OnRemove) OnRemove();
        if (hook == Hook) Hook = nullptr;
        return Result;
    }
    HRESULT Result = S_OK;
    IKVAAudioHook* Hook = nullptr;
    uint32_t Flags = 0;
    int Adds = 0;
    int Removes = 0;
    std::function<void()> OnRemove;
};

struct FakeAudioService : StackObject<IUnknown> {
    IUnknown* Find(const GUID& id) override { return id == kIID_IKVAAudioHookService ? &HookService : nullptr; }
    FakeHookService HookService;
};

struct FakeContext : StackObject<IUnknown> {
    IUnknown* Find(const GUID& id) override {
        if (id == kIID_IKVAAudioService && HasAudioService) return &AudioService;
        if (id == kIID_ITKPlayer) return &Player;
        return nullptr;
    }
    bool HasAudioService = true;
    FakeAudioService AudioService;
    FakePlayer Player;
};

inline void Deliver(IKVAAudioHook& hook, const void* data, size_t size) {
    // A copy of exactly this size: a read beyond it is seen by the address sanitizer.
    const std::vector<uint8_t> copy(static_cast<const uint8_t*>(data), static_cast<const uint8_t*>(data) + size);
    FakeBuffer buffer(copy.data(), size);
    KVAAudioData record{&buffer};
    hook.OnAudioData(&record, nullptr);
}

inline void Announce(IKVAAudioHook& hook, int channels, int bits, uint32_t rate, int blockSize) {
    KVAAudioFormat format{static_cast<uint16_t>(channels), static_cast<uint16_t>(bits), rate,
                          static_cast<uint16_t>(blockSize), 0};
    hook.OnAudioFormat(&format);
}

// A byte that tells its place in the stream: any 32 of them in a row occur nowhere else.
inline uint8_t StreamByte(uint64_t position) {
    uint64_t x = (position + 1) * 0x9E3779B97F4A7C15u;
    x ^= x >> 29;
    x *= 0xBF58476D1CE4E5B9u;
    return static_cast<uint8_t>(x >> 56);
}

inline std::vector<uint8_t> StreamBytes(uint64_t from, size_t count) {
    std::vector<uint8_t> bytes(count);
    for (size_t i = 0; i < count; ++i) bytes[i] = StreamByte(from + i);
    return bytes;
}

}  // namespace tdkviz::test
