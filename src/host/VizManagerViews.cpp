// The manager's views and the frame cycle.
#include "src/host/VizManager.h"
#include "src/plugins/PluginList.h"
#include "src/render/EffectRandomizer.h"

namespace tdkviz {

namespace {

// GetDeviceCaps(NUMCOLORS) of a display without a palette.
constexpr int kNoPalette = -1;

}  // namespace

// ---- The table of views

void CVizManager::CopyViews(ViewList& views) const {
    views.clear();
    const MutexLock lock(&ViewsLock);
    intptr_t position = Views.GetStartPosition();
    while (position != 0) {
        uintptr_t key = 0;
        uintptr_t value = 0;
        Views.GetNext(position, key, value);
        views.emplace_back(static_cast<CViz*>(reinterpret_cast<IMPAVizWindow*>(key)));
    }
}

CVizManager::ViewList CVizManager::CopyViews() const {
    ViewList views;
    CopyViews(views);
    return views;
}

bool CVizManager::HasViews() const {
    const MutexLock lock(&ViewsLock);
    return Views.GetCount() > 0;
}

HRESULT CVizManager::CreateVizWindow(IMPAVizWindow** view, uint32_t* parent) {
    EnsurePluginList();
    PluginList* plugins = Plugins;
    if (!view || !plugins || plugins->Count() == 0) return E_FAIL;
    // Without a worker the view gets its window when a later call succeeds in starting one.
    Worker.Start();

    const HWND parentWindow = reinterpret_cast<HWND>(static_cast<uintptr_t>(parent ? *parent : 0));
    auto* made = new (std::nothrow) CViz(Module, this, plugins, CurrentEffects(), parentWindow);
    if (!made) return E_OUTOFMEMORY;
    RefPtr<CViz> first(made);
    const CVizTimer* timer = FindTimer();
    if (timer && timer->IsRunning()) made->SetActive(true);
    bool only = false;
    {
        const MutexLock lock(&ViewsLock);
        // The table takes over the first reference.
        Views.Set(reinterpret_cast<uintptr_t>(static_cast<IMPAVizWindow*>(made)), 0);
        made->AddRef();
        only = Views.GetCount() == 1;
    }
    Worker.RequestMakeWindows();
    *view = made;
    if (only) RegisterObservers();
    StartIfUnderWay();
    return S_OK;
}

HRESULT CVizManager::DestroyVizWindow(IMPAVizWindow* view) {
    // A view that has gone is looked up by its address alone.
    const auto key = reinterpret_cast<uintptr_t>(view);
    uintptr_t ignored = 0;
    RefPtr<CViz> known;
    {
        const MutexLock lock(&ViewsLock);
        if (!view || !Views.Lookup(key, ignored)) return E_FAIL;
        known = RefPtr<CViz>(static_cast<CViz*>(view));
    }
    known->MarkForDestruction();
    Worker.RequestDestroyWindows();
    // The worker can't wait for itself; without a worker there is no window.
    const bool canWait = Worker.IsRunning() && !Worker.IsWorkerThread();
    const bool destroyed = canWait && known->WaitForDestruction();
    if (!Worker.IsRunning()) known->ForgetOwner();
    RefPtr<CViz> tables;
    {
        const MutexLock lock(&ViewsLock);
        if (!Views.Remove(key)) return E_FAIL;
        tables = RefPtr<CViz>::Adopt(known.Get());
        // The table's reference goes when the worker gets round to the window.
        if (!destroyed && Worker.IsRunning()) retired_.push_back(std::move(tables));
    }
    if (!destroyed) Worker.RequestDestroyWindows();
    return S_OK;
}

// ---- The worker's work

void CVizManager::MakeWindows() {
    for (const RefPtr<CViz>& view : CopyViews()) {
        if (view->NeedsOutput() && !view->IsMarkedForDestruction()) view->MakeWindow(UseDirectDraw);
    }
}

void CVizManager::DestroyWindows() {
    ViewList views = CopyViews();
    {
        const MutexLock lock(&ViewsLock);
        for (RefPtr<CViz>& view : retired_) views.push_back(std::move(view));
        retired_.clear();
    }
    for (RefPtr<CViz>& view : views) {
        if (!view->IsMarkedForDestruction()) continue;
        const std::shared_ptr<Handle> gone = view->GetOutputGone();
        view->DestroyOutput();
        // Who waits has the last reference then, unless it has given up waiting.
        view.Reset();
        SetEvent(gone->Get());
    }
}

// The host should have ended its views. Those that still stand lose their output and know no manager any more.
void CVizManager::EndRemainingViews() {
    const ViewList views = CopyViews();
    for (const RefPtr<CViz>& view : views) view->MarkForDestruction();
    if (!views.empty() && Worker.IsRunning()) {
        Worker.RequestDestroyWindows();
        views.back()->WaitForDestruction();
    }
}

void CVizManager::ReleaseRemainingViews() {
    for (const RefPtr<CViz>& view : CopyViews()) {
        view->ForgetOwner();
        const MutexLock lock(&ViewsLock);
        if (Views.Remove(reinterpret_cast<uintptr_t>(static_cast<IMPAVizWindow*>(view.Get())))) view->Release();
    }
    // Only a worker that had to be terminated leaves any of these.
    for (const RefPtr<CViz>& view : retired_) view->ForgetOwner();
    retired_.clear();
}

void CVizManager::RunFrame() {
    ITKPlaybackEngine* engine = GetEngine();
    if (!engine || engine->GetState() != kEngineStatePlaying) return;
    // Cleared before the look, so that a view shown meanwhile sets it again.
    somethingToShow_.exchange(false);
    CopyViews(frameViews_);
    for (const RefPtr<CViz>& view : frameViews_) {
        if (view->IsVisible()) somethingToShow_ = true;
    }
    if (somethingToShow_) {
        if (IsPaletteDisplay()) {
            BlankVisibleViews();
        } else {
            DrawViews();
        }
    }
    frameViews_.clear();
}

void CVizManager::DrawViews() {
    bool wantSpectrum = false;
    for (const RefPtr<CViz>& view : frameViews_) {
        wantSpectrum = view->IsVisible() && view->WantsSpectrum();
        if (wantSpectrum) break;
    }
    if (clearFrame_.Exchange(false)) AnalysisFrame = {};
    AudioProcessor->ReadAnalysisFrame(AnalysisFrame, wantSpectrum);
    if (EffectsOn && Randomize) {
        const uint32_t seed = RandomSeed;
        RandomSeed = seed + 1;
        RandomizeEffects(RandomEffects, seed);
        // Switched off while this was written.
        if (!EffectsOn) SetNeutralEffects(RandomEffects);
    }
    for (const RefPtr<CViz>& view : frameViews_) {
        if (view->IsVisible()) view->DrawFrame(AnalysisFrame);
    }
}

// A palette on the local display: the pictures could not be shown in their colours. A remote session
// draws all the same.
bool CVizManager::IsPaletteDisplay() const {
    const HWND desktop = GetDesktopWindow();
    const HDC context = GetDC(desktop);
    const int colors = context ? GetDeviceCaps(context, NUMCOLORS) : kNoPalette;
    ReleaseDC(desktop, context);
    return colors != kNoPalette && GetSystemMetrics(SM_REMOTESESSION) == 0;
}

void CVizManager::BlankVisibleViews() {
    for (const RefPtr<CViz>& view : frameViews_) {
        if (view->IsVisible()) view->Blank();
    }
}

}  // namespace tdkviz
