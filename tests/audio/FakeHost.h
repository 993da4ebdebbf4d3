// A host as small as the audio room needs it: context, player, engine with delay, hook service, buffers.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

#include <tdkviz/host.h>

namespace tdkviz::test {

// Lives on the test's stack; counts references for the checks only.
template <typename Interface>
struct StackObject : Interface {
    HRESULT QueryInterface(const GUID& id, void** out) override {
        *out = Find(id);
        if (!*out) return E_NOINTERFACE;
        static_cast<IUnknown*>(*out)->AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return static_cast<ULONG>(++References); }
    ULONG Release() override { return static_cast<ULONG>(--References); }
    virtual IUnknown* Find(const GUID&) { return nullptr; }

    std::atomic<int> References{0};
};

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

// A view of bytes that the test owns.
struct FakeBuffer : StackObject<IKVABuffer> {
    FakeBuffer(const void* data, size_t size) : Data(const_cast<void*>(data)), Size(static_cast<uint32_t>(size)) {}
    HRESULT GetContents(void** data, uint32_t* size) override {
        *data = Data;
        *size = Size;
        return S_OK;
    }
    HRESULT SetContents(const void*, uint32_t) override { return E_FAIL; }
    HRESULT SetSize(uint32_t) override { return E_FAIL; }
    uint32_t GetSize() override { return Size; }
    void* GetBuffer() override { return Data; }
    void* Data;
    uint32_t Size;
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
