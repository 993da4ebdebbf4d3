#include "player/LiveRun.h"

#include <tdkplatform.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "player/base/ExitCode.h"
#include "player/render/Snapshot.h"

namespace tdkplay {
namespace {

constexpr double kNever = std::numeric_limits<double>::infinity();
// A wait may come back a little early by the sound device's clock.
constexpr double kTimeTolerance = 0.002;

constexpr int kVolumeStep = 5;  // percent
constexpr char kCaptureTitle[] = "What you hear";

// The add-on tells that a plug-in goes before the view leaves it, so the view is looked at for a while.
constexpr int kLooks = 20;
constexpr DWORD kLookInterval = 50;  // milliseconds

std::string TitleOf(const Capture& capture) {
    const std::string device = capture.Title();
    return device.empty() ? kCaptureTitle : std::string(kCaptureTitle) + " - " + device;
}

std::string OffsetText(int milliseconds) {
    return std::string("Pictures ") + (milliseconds > 0 ? "+" : "") + std::to_string(milliseconds) + " ms";
}

}  // namespace

LiveRun::LiveRun(const Options& options, Session& session, Jukebox& jukebox, Interrupt& interrupt,
                 SettingsKeeper& keeper)
    : options_(options),
      session_(session),
      jukebox_(jukebox),
      interrupt_(interrupt),
      keeper_(keeper),
      hasStrip_(options.Snapshots.empty() && !options.Headless),
      window_(StartingSize(), this, hasStrip_ ? TransportStrip::kHeight : 0) {
    const PictureSize size = window_.PictureRoom();
    if (hasStrip_) {
        strip_ = std::make_unique<TransportStrip>(window_.Handle(), static_cast<TransportEvents&>(*this));
        button_ = std::make_unique<SettingsButton>(session.Button(), window_.Handle(), *strip_);
    }
    view_ = std::make_unique<ViewGrid>(session.Manager(), window_.Handle(), size, session.Plugins(),
                                       session.ShownPlugins());
    view_->TellClicks(*clicks_, *rightClicks_);
    OnStripMoved();
    if (keeper.Settings().OnTop.value_or(session.Manager().GetAlwaysOnTop() != 0)) window_.SetOnTop(true);
    if (options.Device) keeper_.Note(&PlayerSettings::Device, *options.Device);
    keeper_.Note(&PlayerSettings::Volume, std::optional(session.Sound().Volume()));
    keeper_.Note(&PlayerSettings::Offsets, session.Sound().Offsets());
    NoteSize(size);
    if (!PlaysPieces()) DragAcceptFiles(window_.Handle(), FALSE);
    session.Manager().AddListReceiver(pluginWatch_.Get());
    interrupt_.Report(&news_);
    stands_ = true;
}

LiveRun::~LiveRun() {
    stands_ = false;
    session_.Manager().RemoveListReceiver(pluginWatch_.Get());
    pluginWatch_->Detach();
    interrupt_.Report(nullptr);
    audioThread_.reset();
    session_.Sound().Stop();
    keeper_.Store();
}

// What was remembered may come from a larger screen.
PictureSize LiveRun::StartingSize() const {
    const std::optional<PictureSize> remembered = keeper_.Settings().Size;
    if (options_.Size || !remembered) return options_.SizeOrUsual();
    const PictureSize largest = PlayerWindow::LargestPicture(hasStrip_ ? TransportStrip::kHeight : 0);
    return {std::min(remembered->Width, largest.Width), std::min(remembered->Height, largest.Height)};
}

void LiveRun::Run() {
    session_.Sound().Play();
    ShowState();
    audioThread_ = std::make_unique<AudioThread>(session_.Sound().Pump(), session_.Sound().Wake(), news_);
    while (!done_) {
        Wait();
        ServeMessages();
        Serve();
    }
}

void LiveRun::Serve() {
    keeper_.StoreWhatHasRested();
    ServeNews();
    FollowPlugins();
    FollowPieces();
    ServeMoments();
    if (note_.Pass()) ShowNote();
    if (UntilProgress() == 0) ShowProgress();
    if (interrupt_.IsRequested()) done_ = true;
    if (done_) EndMenu();
}

// Paused and with nothing to store, nothing but a message, an interrupt or a plug-in ends the wait.
void LiveRun::Wait() {
    DWORD limit = std::min({keeper_.UntilStoring(), UntilLook(), UntilProgress(), note_.Left()});
    double left = kNever;
    if (session_.Sound().IsPlaying()) {
        const double moment = NextMoment();
        if (moment != kNever) left = std::max(moment - session_.Sound().Played(), 0.0);
        if (pieceChanges_) left = std::min(left, session_.Sound().Pump().Where().UntilNext);
    }
    if (left != kNever) limit = std::min(limit, static_cast<DWORD>(std::ceil(left * 1000.0)));
    const HANDLE news = news_.Handle();
    MsgWaitForMultipleObjects(1, &news, FALSE, limit, QS_ALLINPUT);
}

// The layer's own round of the loop, since it serves the keys of the settings dialog, too.
void LiveRun::ServeMessages() {
    while (TdkpDispatchMessages() != 0 && !done_) {
    }
}

void LiveRun::ServeNews() {
    const AudioThread::News news = audioThread_->TakeNews();
    if (news.DeviceMoved) session_.Sound().OnDeviceMoved();
    if (news.NextPiece) pieceChanges_ = true;
    if (news.RestChanged) session_.Sound().OnRestChanged();
    if (news.DeviceMoved || news.RestChanged) ShowState();
    if (!news.Ended) return;
    pieceChanges_ = true;
    if (PlaysPieces() && jukebox_.OnEnd(session_.Sound())) return;
    if (nextSnapshot_ < options_.Snapshots.size())
        throw PlayerError(ExitCode::kUsage,
                          options_.Snapshots[nextSnapshot_].Path + ": the piece ended before its time");
    done_ = true;
}

void LiveRun::FollowPlugins() {
    const bool hasNews = pluginWatch_->TakeNews();
    if (hasNews) looksLeft_ = kLooks;
    if (!hasNews && UntilLook() != 0) return;
    --looksLeft_;
    lookedAt_ = GetTickCount();
    const std::string shown = view_->Plugin().Path;
    // A view that couldn't go where the add-on sent it, or had nowhere to go until now.
    if (!view_->Refresh() && (looksLeft_ == 0 || view_->Plugin().Path.empty())) view_->StepPlugin(1);
    if (view_->Plugin().Path != shown) ShowState();
}

DWORD LiveRun::UntilLook() const {
    if (looksLeft_ == 0) return INFINITE;
    return kLookInterval - std::min(GetTickCount() - lookedAt_, kLookInterval);
}

double LiveRun::NextMoment() const {
    double moment = options_.Duration.value_or(kNever);
    if (nextSnapshot_ < options_.Snapshots.size()) moment = std::min(moment, options_.Snapshots[nextSnapshot_].At);
    return moment;
}

void LiveRun::ServeMoments() {
    const double now = session_.Sound().Played() + kTimeTolerance;
    for (; nextSnapshot_ < options_.Snapshots.size() && options_.Snapshots[nextSnapshot_].At <= now; ++nextSnapshot_) {
        WritePng(ReadWindow(window_.Handle()), options_.Snapshots[nextSnapshot_].Path);
        if (nextSnapshot_ + 1 == options_.Snapshots.size() && !options_.Duration) done_ = true;
    }
    if (options_.Duration && now >= *options_.Duration) done_ = true;
}

void LiveRun::OnPauseKey() {
    if (session_.Sound().IsPlaying())
        session_.Sound().Pause();
    else
        session_.Sound().Play();
    ShowState();
}

void LiveRun::OnSeekKey(double seconds) {
    if (PlaysPieces()) session_.Sound().SeekBy(seconds);
}

void LiveRun::OnPluginKey(int direction) {
    view_->StepPlugin(direction);
    ShowState();
}

void LiveRun::OnVolumeKey(int direction) {
    SetVolume(session_.Sound().Volume() + direction * kVolumeStep);
}

void LiveRun::OnSettingsKey() {
    if (button_) button_->Press();
}

void LiveRun::OnOffsetKey(int milliseconds) {
    Playback& sound = session_.Sound();
    sound.SetOffset(sound.Offset() + milliseconds);
    keeper_.Note(&PlayerSettings::Offsets, sound.Offsets());
    note_.Show(OffsetText(sound.Offset()));
    ShowNote();
}

void LiveRun::ShowNote() {
    if (strip_) strip_->SetNotice(note_.Text());
    ShowState();
}

void LiveRun::OnSize(PictureSize size, bool visible) {
    if (!stands_) return;
    OnStripMoved();
    if (!visible)
        view_->Hide();
    else if (isHidden_)
        view_->Show(size);
    else
        view_->Resize(size);
    isHidden_ = !visible;
    session_.Sound().SetWatched(visible);
    KeepScreenAwake();
    if (visible) NoteSize(size);
}

// A picture that has the strip's room for the moment is no size for the next run.
void LiveRun::NoteSize(PictureSize size) {
    if (!window_.IsFullScreen() && window_.HasStrip() && size.IsWithinBounds())
        keeper_.Note(&PlayerSettings::Size, std::optional(size));
}

std::string LiveRun::Heard() const {
    const Capture* const capture = session_.Sound().Captured();
    return capture ? TitleOf(*capture) : jukebox_.Heard().Title;
}

std::string LiveRun::StateText() {
    Playback& sound = session_.Sound();
    std::string text = note_.Text();
    if (text.empty() && PlaysPieces()) text = "Volume " + std::to_string(sound.Volume()) + " %";
    if (!text.empty()) text = " - " + text;
    if (!sound.IsPlaying()) return text + " (paused)";
    return sound.IsResting() ? text + " (silence)" : text;
}

void LiveRun::ShowState() {
    const PluginInfo& plugin = view_->Plugin();
    const std::string name = plugin.Name.empty() ? "No plug-in" : plugin.Name;
    window_.SetTitle(Heard() + " - " + name + StateText());
    ShowProgress();
    KeepScreenAwake();
    if (!plugin.Path.empty()) keeper_.Note(&PlayerSettings::Plugin, plugin.File());
}

}  // namespace tdkplay
