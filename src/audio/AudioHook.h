// CKVAAudioHook: the tap in the host's audio path.
#pragma once

#include <atomic>

#include <tdkviz/host.h>

#include "src/support/RefPtr.h"

namespace tdkviz {

// Serves both hook interfaces and registers with the host's hook service; what becomes of the audio is
// the derived class's affair. It never changes the audio. The reference count is for the host's
// bookkeeping only: the object belongs to whoever made it and ends with its destructor.
class CKVAAudioHook : public IKVAAudioHook, public ITKAudioHook {
public:
    // `hostContext` (may be null) is asked for the audio service. [host]
    explicit CKVAAudioHook(IUnknown* hostContext);
    CKVAAudioHook(const CKVAAudioHook&) = delete;
    CKVAAudioHook& operator=(const CKVAAudioHook&) = delete;

    // Registers with the hook service, if there is one and it has not happened yet. A failure is not
    // reported; the next call tries again. [host]
    void Attach();

    // IUnknown. [any]
    HRESULT QueryInterface(const GUID& id, void** out) override;
    ULONG AddRef() override;
    ULONG Release() override;

    // IKVAAudioHook. S_OK whatever happens. A null record or a record without a buffer is ignored. [audio]
    HRESULT OnAudioFormat(KVAAudioFormat* format) override;
    HRESULT OnAudioData(KVAAudioData* in, KVAAudioData* out) override;

    // ITKAudioHook. S_OK. [host]
    HRESULT OnAudioState(uint32_t flags) override;

    // Withdraws the hook.
    virtual ~CKVAAudioHook();

protected:
    // `format` may be null; `in` and its buffer are not.
    virtual void ProcessFormat(KVAAudioFormat* format) = 0;
    virtual void ProcessData(KVAAudioData* in, KVAAudioData* out) = 0;

    // Withdraws the hook and lets go of the audio service; from here on calls of the host are dropped,
    // and one that is under way has come back (or two seconds are over). A derived class calls it first
    // in its destructor, while its part of the object still stands. A second call does nothing.
    void Detach();

    // Counts a call of the host as under way while it lives; such a call does nothing unless IsOpen.
    // Entering and closing are sequentially consistent on purpose: either the call sees that the hook is
    // closed, or Detach sees the call.
    class Passage {
    public:
        explicit Passage(CKVAAudioHook& hook) : hook_(hook) { ++hook_.underWay_; }
        ~Passage() { --hook_.underWay_; }
        Passage(const Passage&) = delete;
        Passage& operator=(const Passage&) = delete;

        bool IsOpen() const { return !hook_.closed_; }

    private:
        CKVAAudioHook& hook_;
    };

private:
    bool Registered = false;
    tdkviz::RefCount RefCount;
    RefPtr<IUnknown> AudioService;
    std::atomic<bool> closed_{false};
    std::atomic<int32_t> underWay_{0};
};

}  // namespace tdkviz
