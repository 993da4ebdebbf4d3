// A host in one file: a song and its pictures in a plain X window. Of the project it knows the contract headers alone;
// docs/hosts.md walks through it.
//
//   tdkhost FOLDER SONG     FOLDER holds tdkviz.so and its companions
//
// The plug-ins are those in the folder Visualizations beside this program. Any key goes to the next one.
#include <X11/Xlib.h>
#include <dlfcn.h>
#include <pulse/simple.h>
#include <sndfile.h>
#include <tdkviz/host.h>
#include <tdkviz/viz.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

using namespace std::chrono;

constexpr uint16_t kWidth = 640, kHeight = 480;       // pixels
constexpr size_t kBlockFrames = 1024;                 // in one delivery
constexpr uint32_t kLead = 100, kLargestDelay = 500;  // milliseconds

// What is handed to the add-on outlives it, so references need no counting.
template <typename... Interfaces>
struct Object : Interfaces... {
    HRESULT QueryInterface(const GUID& id, void** out) override {
        *out = Find(id);
        return *out ? S_OK : E_NOINTERFACE;
    }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    virtual IUnknown* Find(const GUID&) { return nullptr; }
};

// The samples of one delivery.
struct Block final : Object<IKVABuffer> {
    HRESULT GetContents(void** data, uint32_t* size) override { return *data = GetBuffer(), *size = GetSize(), S_OK; }
    HRESULT SetContents(const void*, uint32_t) override { return E_NOTIMPL; }
    HRESULT SetSize(uint32_t) override { return E_NOTIMPL; }
    uint32_t GetSize() override { return static_cast<uint32_t>(Samples.size() * sizeof(int16_t)); }
    void* GetBuffer() override { return Samples.data(); }
    std::vector<int16_t> Samples;
};

// What plays, and how far the listener is behind what has been delivered. Asked on any thread.
struct Engine final : Object<ITKPlaybackEngine, IKVAAudioDelay> {
    IUnknown* Find(const GUID& id) override {
        return id == kIID_IKVAAudioDelay ? static_cast<IKVAAudioDelay*>(this) : nullptr;
    }
    uint32_t GetState() override { return State; }
    uint32_t QueryEngineFlag(uint32_t flag) override { return flag == kEngineFlagVisualize; }
    HRESULT GetPreferences(IKVAValues**) override { return E_NOTIMPL; }
    HRESULT GetConfiguredDelay(uint32_t* out) override { return *out = kLargestDelay, S_OK; }
    HRESULT GetCurrentDelay(uint32_t* out) override { return *out = Delay, S_OK; }
    std::atomic<uint32_t> State = 0, Delay = 0;
};

// The context: the way to the engine, who watches its state, and the tap for the audio.
struct Context final : Object<ITKPlayer, ITKStateSource, IKVAAudioHookService> {
    IUnknown* Find(const GUID& id) override {
        if (id == kIID_IUnknown || id == kIID_ITKPlayer) return static_cast<ITKPlayer*>(this);
        if (id == kIID_ITKStateSource) return static_cast<ITKStateSource*>(this);
        const bool isTap = id == kIID_IKVAAudioService || id == kIID_IKVAAudioHookService;
        return isTap ? static_cast<IKVAAudioHookService*>(this) : nullptr;
    }
    IUnknown* GetPlaybackEngine() override { return static_cast<ITKPlaybackEngine*>(&Playing); }
    HRESULT AddEngineObserver(ITKPlaybackEngineObserver*) override { return S_OK; }  // the engine stays the same
    HRESULT RemoveEngineObserver(ITKPlaybackEngineObserver*) override { return S_OK; }
    HRESULT AddStateObserver(ITKStateObserver* observer) override { return Observer = observer, S_OK; }
    HRESULT RemoveStateObserver(ITKStateObserver*) override { return Observer = nullptr, S_OK; }
    HRESULT AddHook(IKVAAudioHook* hook, uint32_t) override { return SetHook(hook); }
    HRESULT RemoveHook(IKVAAudioHook*) override { return SetHook(nullptr); }
    HRESULT SetHook(IKVAAudioHook* hook) {
        const std::lock_guard lock(HookLock);  // no delivery is under way any more behind this
        return Hook = hook, S_OK;
    }
    void SetState(uint32_t state) {
        const uint32_t before = Playing.State.exchange(state);
        if (Observer) Observer->OnStateChange(before, state);
    }
    Engine Playing;
    ITKStateObserver* Observer = nullptr;
    std::mutex HookLock;
    IKVAAudioHook* Hook = nullptr;  // guarded by HookLock
};

// The audio thread: block by block to the add-on, then to the sound server, or into silence that lasts as long.
void PlaySong(SNDFILE* song, SF_INFO info, Context& context, const std::atomic<bool>& quit) {
    const auto rate = static_cast<uint32_t>(info.samplerate);
    const pa_sample_spec spec = {PA_SAMPLE_S16LE, rate, static_cast<uint8_t>(info.channels)};
    const pa_buffer_attr ahead = {~0u, static_cast<uint32_t>(pa_usec_to_bytes(kLead * 1000, &spec)), ~0u, ~0u, ~0u};
    pa_simple* sound =
        pa_simple_new(nullptr, "tdkhost", PA_STREAM_PLAYBACK, nullptr, "song", &spec, nullptr, &ahead, nullptr);
    Block block;
    block.Samples.resize(kBlockFrames * spec.channels);
    KVAAudioFormat format = {spec.channels, 16, rate, static_cast<uint16_t>(block.GetSize()), 0};
    if (context.Hook) context.Hook->OnAudioFormat(&format);
    const microseconds blockTime(kBlockFrames * 1'000'000 / rate);
    for (auto end = steady_clock::now(); !quit;) {
        const sf_count_t got = sf_readf_short(song, block.Samples.data(), kBlockFrames);
        if (got <= 0) sf_seek(song, 0, SEEK_SET);  // once more
        end = std::max(end, steady_clock::now()) + blockTime;
        const auto delay = sound ? microseconds(pa_simple_get_latency(sound, nullptr)) + blockTime
                                 : duration_cast<microseconds>(end - steady_clock::now());
        context.Playing.Delay = static_cast<uint32_t>(std::clamp<int64_t>(delay.count() / 1000, 1, kLargestDelay));
        KVAAudioData data = {&block};
        {
            const std::lock_guard lock(context.HookLock);
            if (context.Hook) context.Hook->OnAudioData(&data, &data);
        }
        if (!sound || pa_simple_write(sound, block.Samples.data(), block.GetSize(), nullptr) != 0)
            std::this_thread::sleep_until(end - milliseconds(kLead));
    }
    if (sound) pa_simple_free(sound);
}

int Fail(const char* why) {
    std::fprintf(stderr, "tdkhost: %s\n", why);
    return EXIT_FAILURE;
}

// The entry of the list that the view shows next: `index`, or the first behind it that can be described.
void ShowPlugin(IMPAVizMgr* manager, IMPAVizWindow* view, uint32_t& index) {
    std::array<char, 4096> name, path;
    for (uint32_t tries = manager->GetPluginCount(); tries > 0; --tries, ++index) {
        index %= std::max(manager->GetPluginCount(), 1u);
        if (FAILED(manager->GetPluginInfo(static_cast<uint16_t>(index), name.data(), path.data(), path.size())))
            continue;
        view->SelectPlugin(path.data());
        return;
    }
}

// A window with a view that fills it, until it is asked to close.
int ShowSong(IMPAVizMgr* manager, Context& context, Display* x, SNDFILE* song, const SF_INFO& info) {
    auto window = static_cast<uint32_t>(XCreateSimpleWindow(x, DefaultRootWindow(x), 0, 0, kWidth, kHeight, 0, 0, 0));
    Atom closeRequest = XInternAtom(x, "WM_DELETE_WINDOW", False);
    XSetWMProtocols(x, window, &closeRequest, 1);
    XStoreName(x, window, "tdkhost");
    XSelectInput(x, window, KeyPressMask | StructureNotifyMask);
    XMapWindow(x, window);
    XSync(x, False);  // the add-on is another client, and has to find the window

    IMPAVizWindow* view = nullptr;
    uint32_t plugin = 0;
    if (FAILED(manager->CreateVizWindow(&view, &window))) return Fail("no plug-ins in the folder Visualizations");
    ShowPlugin(manager, view, plugin);
    view->Show(kWidth, kHeight);
    std::atomic<bool> quit = false;
    std::thread audio(PlaySong, song, info, std::ref(context), std::cref(quit));
    context.SetState(kEngineStatePlaying);

    for (XEvent event = {}; !quit && XNextEvent(x, &event) == 0;) {
        if (event.type == KeyPress) ShowPlugin(manager, view, ++plugin);
        if (event.type == ConfigureNotify) view->Resize(event.xconfigure.width, event.xconfigure.height);
        quit = event.type == ClientMessage && static_cast<Atom>(event.xclient.data.l[0]) == closeRequest;
    }
    audio.join();
    context.SetState(0);
    manager->DestroyVizWindow(view);
    return EXIT_SUCCESS;
}

int main(int argc, char** argv) {
    if (argc != 3) return Fail("usage: tdkhost FOLDER SONG");
    const std::string folder = argv[1];
    void* const library = dlopen((folder + "/tdkviz.so").c_str(), RTLD_NOW | RTLD_LOCAL);
    Display* const x = library ? XOpenDisplay(nullptr) : nullptr;
    SF_INFO info = {};
    SNDFILE* const song = x ? sf_open(argv[2], SFM_READ, &info) : nullptr;
    if (!song) return Fail(!library ? dlerror() : !x ? "no X server" : "the song can't be read");

    const auto setPaths = reinterpret_cast<SetDLLAccessPathFunction>(dlsym(library, kSetDLLAccessPathName));
    const auto create = reinterpret_cast<TKCreateInstanceFunction>(dlsym(library, kCreateInstanceName));
    setPaths(("DT_Common=" + folder + '\0' + "DT_Codecs=" + folder + "/Codecs" + '\0').c_str());
    Context context;
    IUnknown* made = nullptr;
    void* manager = nullptr;
    if (FAILED(create(&made))) return Fail("the add-on makes no component");
    auto* const component = static_cast<ITKCommandButton*>(made);
    component->Initialize(static_cast<ITKPlayer*>(&context));
    component->QueryInterface(kIID_IMPAVizMgr, &manager);
    const int result = ShowSong(static_cast<IMPAVizMgr*>(manager), context, x, song, info);
    component->Shutdown();  // ends the manager, whatever references there are
    component->Release();
    dlclose(library);
    sf_close(song);
    XCloseDisplay(x);
    return result;
}
