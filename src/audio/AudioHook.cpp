#include "src/audio/AudioHook.h"

#include <chrono>
#include <thread>

namespace tdkviz {
namespace {

constexpr uint32_t kHookFlags = 1;
constexpr std::chrono::seconds kLongestDrain{2};
constexpr std::chrono::milliseconds kDrainPause{1};

}  // namespace

CKVAAudioHook::CKVAAudioHook(IUnknown* hostContext)
    : AudioService(QueryFor<IUnknown>(hostContext, kIID_IKVAAudioService)) {}

CKVAAudioHook::~CKVAAudioHook() {
    Detach();
}

void CKVAAudioHook::Attach() {
    if (!AudioService || Registered) return;
    auto service = QueryFor<IKVAAudioHookService>(AudioService.Get(), kIID_IKVAAudioHookService);
    if (service) Registered = SUCCEEDED(service->AddHook(this, kHookFlags));
}

void CKVAAudioHook::Detach() {
    if (closed_.exchange(true)) return;
    if (Registered) {
        auto service = QueryFor<IKVAAudioHookService>(AudioService.Get(), kIID_IKVAAudioHookService);
        if (service && SUCCEEDED(service->RemoveHook(this))) Registered = false;
    }
    AudioService.Reset();
    const auto end = std::chrono::steady_clock::now() + kLongestDrain;
    while (underWay_ != 0 && std::chrono::steady_clock::now() < end) std::this_thread::sleep_for(kDrainPause);
}

HRESULT CKVAAudioHook::QueryInterface(const GUID& id, void** out) {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (id == kIID_IUnknown || id == kIID_IKVAAudioHook || id == kIID_IKVAAudioHookAlias) {
        *out = static_cast<IKVAAudioHook*>(this);
    } else if (id == kIID_ITKAudioHook) {
        *out = static_cast<ITKAudioHook*>(this);
    } else {
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

ULONG CKVAAudioHook::AddRef() {
    return RefCount.Add();
}

ULONG CKVAAudioHook::Release() {
    const int32_t count = RefCount.Remove();
    return count > 0 ? static_cast<ULONG>(count) : 0;
}

HRESULT CKVAAudioHook::OnAudioFormat(KVAAudioFormat* format) {
    Passage passage(*this);
    if (passage.IsOpen()) ProcessFormat(format);
    return S_OK;
}

HRESULT CKVAAudioHook::OnAudioData(KVAAudioData* in, KVAAudioData* out) {
    if (!in || !in->Buffer) return S_OK;
    Passage passage(*this);
    if (passage.IsOpen()) ProcessData(in, out);
    return S_OK;
}

HRESULT CKVAAudioHook::OnAudioState(uint32_t) {
    return S_OK;
}

}  // namespace tdkviz
