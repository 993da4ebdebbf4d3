// Plug-ins with one fault each. The build makes a library of every class here, with FAULT for its name.
#include <fcntl.h>
#include <unistd.h>

#include <cfenv>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <thread>

#include "tests/check/plugins/GoodPlugin.h"

// Writes a pixel in front of the first one.
class BeforeTheStart final : public GoodPlugin {
    void PaintInto(const Picture& picture, VizAnalysisFrame&) override {
        static_cast<uint32_t*>(picture.Pixels)[-1] = 0x808080;
    }
};

// Paints nothing.
class Black final : public GoodPlugin {
    void PaintInto(const Picture&, VizAnalysisFrame&) override {}
};

// Goes to another folder.
class ChangesFolder final : public GoodPlugin {
    HRESULT Initialize(IUnknown*) override { return chdir("/") == 0 ? S_OK : E_FAIL; }
};

// Crashes where the picture has one pixel.
class CrashAtOnePixel final : public GoodPlugin {
    void PaintInto(const Picture& picture, VizAnalysisFrame& frame) override {
        if (picture.Width * picture.Height == 1) std::abort();
        GoodPlugin::PaintInto(picture, frame);
    }
};

// Crashes in its first Draw.
class CrashInDraw final : public GoodPlugin {
    void PaintInto(const Picture&, VizAnalysisFrame&) override { *static_cast<volatile int*>(nullptr) = 1; }
};

// Takes the player with it.
class ExitsInInitialize final : public GoodPlugin {
    HRESULT Initialize(IUnknown*) override { std::exit(3); }
};

// All white and all black in turn.
class Flashing final : public GoodPlugin {
    void PaintInto(const Picture& picture, VizAnalysisFrame&) override {
        const uint8_t level = frames_++ / 2 % 2 == 0 ? 0xFF : 0;
        for (int32_t y = 0; y < picture.Height; ++y)
            std::memset(picture.Row(y), level, static_cast<size_t>(picture.Width) * 4);
    }

private:
    int frames_ = 0;
};

// Rounds otherwise from its first Draw on.
class FloatingPointMode final : public GoodPlugin {
    void PaintInto(const Picture& picture, VizAnalysisFrame& frame) override {
        std::fesetround(FE_DOWNWARD);
        GoodPlugin::PaintInto(picture, frame);
    }
};

// Nothing is wrong with it.
class Good final : public GoodPlugin {};

// Doesn't come back from Draw.
class HangInDraw final : public GoodPlugin {
    void PaintInto(const Picture&, VizAnalysisFrame&) override {
        for (;;) pause();
    }
};

// Takes it that rows follow one another without room between them.
class IgnoresPitch final : public GoodPlugin {
    void PaintInto(const Picture& picture, VizAnalysisFrame&) override {
        for (int32_t i = 0; i < picture.Width * picture.Height; ++i)
            static_cast<uint32_t*>(picture.Pixels)[i] = 0x808080;
    }
};

// Loses memory with each frame.
class LeaksEachFrame final : public GoodPlugin {
    void PaintInto(const Picture& picture, VizAnalysisFrame& frame) override {
        kept_ = std::malloc(100);
        GoodPlugin::PaintInto(picture, frame);
    }

private:
    void* volatile kept_ = nullptr;
};

// Loses a file with each start.
class LeaksEachStart final : public GoodPlugin {
    HRESULT Initialize(IUnknown*) override { return open("/dev/null", O_RDONLY) < 0 ? E_FAIL : S_OK; }
};

// Gives its name without a terminator.
class NoTerminator final : public GoodPlugin {
    HRESULT GetInfo(char* name, char*, char*) override {
        std::memcpy(name, "Test", 4);
        return S_OK;
    }
};

// Asks for a window and never paints into it.
class NoWindow final : public GoodPlugin {
    HRESULT GetCapabilities(uint32_t*, bool*, IKVAValues* properties) override {
        return properties->SetNumber(kPropertyRenderMode, kRenderToWindow);
    }
    HRESULT DrawToWindow(MPAVizWindowRecord*, VizAnalysisFrame*) override { return S_OK; }
};

// Writes a row behind the last one.
class RowTooMany final : public GoodPlugin {
    void PaintInto(const Picture& picture, VizAnalysisFrame&) override {
        for (int32_t x = 0; x < picture.Width; ++x) picture.Row(picture.Height)[x] = 0x808080;
    }
};

// Takes longer for a frame than there is.
class Slow final : public GoodPlugin {
    void PaintInto(const Picture& picture, VizAnalysisFrame& frame) override {
        std::this_thread::sleep_for(std::chrono::milliseconds(40));
        GoodPlugin::PaintInto(picture, frame);
    }
};

// A thread of its own outlives it.
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

// Throws from Draw.
class Throws final : public GoodPlugin {
    void PaintInto(const Picture&, VizAnalysisFrame&) override { throw std::runtime_error("no such colour"); }
};

// Stops for a debugger that isn't there, in its first Draw.
class Trap final : public GoodPlugin {
    void PaintInto(const Picture&, VizAnalysisFrame&) override {
#if defined(__x86_64__)
        asm volatile("int3");
#else
        std::raise(SIGTRAP);
#endif
    }
};

// Takes the byte for a word.
class WideFlag final : public GoodPlugin {
    HRESULT GetCapabilities(uint32_t*, bool* wantsSpectrum, IKVAValues*) override {
        const int32_t yes = 1;
        std::memcpy(static_cast<void*>(wantsSpectrum), &yes, sizeof yes);
        return S_OK;
    }
};

// Changes what the plug-ins behind it hear.
class WritesFrame final : public GoodPlugin {
    void PaintInto(const Picture& picture, VizAnalysisFrame& frame) override {
        frame.WaveformLeft[0] = 1;
        GoodPlugin::PaintInto(picture, frame);
    }
};

EXPORT_PLUGIN(FAULT)
