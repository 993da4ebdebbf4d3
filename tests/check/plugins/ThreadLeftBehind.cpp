// A thread of its own outlives it.
#include <unistd.h>

#include <thread>

#include "tests/check/plugins/GoodPlugin.h"

class ThreadLeftBehind final : public GoodPlugin {
    HRESULT SetActive(uint32_t) override {
        if (started_) return S_OK;
        started_ = true;
        std::thread([] {
            for (;;) pause();
        }).detach();
        return S_OK;
    }

private:
    bool started_ = false;
};

EXPORT_PLUGIN(ThreadLeftBehind)
