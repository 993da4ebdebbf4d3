#include "player/host/AudioHooks.h"

#include <algorithm>

namespace tdkplay {
namespace {

constexpr uint32_t kAudioFlows = 1;
constexpr uint32_t kAudioStopped = 0;

}  // namespace

void AudioHooks::AnnounceFormat(const KVAAudioFormat& format) {
    const std::lock_guard lock(mutex_);
    format_ = format;
    for (Entry& entry : entries_) {
        entry.Hook->OnAudioFormat(&format_);
        entry.KnowsFormat = true;
    }
}

void AudioHooks::Deliver(IKVABuffer* buffer) {
    const std::lock_guard lock(mutex_);
    if (format_.Channels == 0) return;
    KVAAudioData in = {buffer};
    KVAAudioData out = {buffer};
    for (Entry& entry : entries_) {
        if (!entry.KnowsFormat) entry.Hook->OnAudioFormat(&format_);
        entry.KnowsFormat = true;
        entry.Hook->OnAudioData(&in, &out);
    }
}

void AudioHooks::AnnounceState(bool flowing) {
    const std::lock_guard lock(mutex_);
    for (const Entry& entry : entries_)
        if (const auto hook = QueryFor<ITKAudioHook>(entry.Hook, kIID_ITKAudioHook))
            hook->OnAudioState(flowing ? kAudioFlows : kAudioStopped);
}

HRESULT AudioHooks::QueryInterface(const GUID& id, void** out) {
    return GiveInterface(id, out,
                         {{kIID_IUnknown, this}, {kIID_IKVAAudioService, this}, {kIID_IKVAAudioHookService, this}});
}

HRESULT AudioHooks::AddHook(IKVAAudioHook* hook, uint32_t) {
    if (!hook) return E_INVALIDARG;
    const std::lock_guard lock(mutex_);
    entries_.push_back({hook, false});
    return S_OK;
}

HRESULT AudioHooks::RemoveHook(IKVAAudioHook* hook) {
    const std::lock_guard lock(mutex_);
    return std::erase_if(entries_, [hook](const Entry& entry) { return entry.Hook == hook; }) != 0 ? S_OK : E_FAIL;
}

}  // namespace tdkplay
