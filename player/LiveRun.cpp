#include "player/LiveRun.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>

#include "player/DemoPiece.h"
#include "player/ExitCode.h"
#include "player/Snapshot.h"

namespace tdkplay {
namespace {

constexpr double kNever = std::numeric_limits<double>::infinity();
// A wait may come back a little early by the sound device's clock.
constexpr double kTimeTolerance = 0.002;

}  // namespace

LiveRun::LiveRun(const Options& options, Session& session, Interrupt& interrupt)
    : options_(options),
      session_(session),
      interrupt_(interrupt),
      window_(options.Width, options.Height, this),
      view_(std::make_unique<View>(session.Manager(), window_.Handle(), options.Width, options.Height,
                                   session.Plugins(), session.ChosenPlugin())) {
    interrupt_.Report(&news_);
}

LiveRun::~LiveRun() {
    interrupt_.Report(nullptr);
    audioThread_.reset();
    session_.Sound().Stop();
}

void LiveRun::Run() {
    session_.Sound().Play();
    ShowTitle();
    audioThread_ = std::make_unique<AudioThread>(session_.Sound().Pump(), session_.Sound().Wake(), news_);
    while (!done_) {
        Wait();
        ServeMessages();
        ServeNews();
        ServeMoments();
        if (interrupt_.IsRequested()) done_ = true;
    }
}

// Paused, nothing but a message or an interrupt ends the wait.
void LiveRun::Wait() {
    DWORD limit = INFINITE;
    const double moment = NextMoment();
    if (moment != kNever && session_.Sound().IsPlaying()) {
        const double left = std::max(moment - session_.Sound().Pump().Played(), 0.0);
        limit = static_cast<DWORD>(std::ceil(left * 1000.0));
    }
    const HANDLE news = news_.Handle();
    MsgWaitForMultipleObjects(1, &news, FALSE, limit, QS_ALLINPUT);
}

void LiveRun::ServeMessages() {
    MSG message = {};
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) done_ = true;
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

void LiveRun::ServeNews() {
    const AudioThread::News news = audioThread_->TakeNews();
    if (news.DeviceLost) session_.Sound().OnDeviceLost();
    if (news.DeviceMoved) session_.Sound().OnDeviceMoved();
    if (!news.Ended) return;
    if (nextSnapshot_ < options_.Snapshots.size())
        throw PlayerError(ExitCode::kUsage,
                          options_.Snapshots[nextSnapshot_].Path + ": the piece ended before its time");
    done_ = true;
}

double LiveRun::NextMoment() const {
    double moment = options_.Duration.value_or(kNever);
    if (nextSnapshot_ < options_.Snapshots.size()) moment = std::min(moment, options_.Snapshots[nextSnapshot_].At);
    return moment;
}

void LiveRun::ServeMoments() {
    const double now = session_.Sound().Pump().Played() + kTimeTolerance;
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
    ShowTitle();
}

void LiveRun::OnSeekKey(double seconds) {
    session_.Sound().SeekBy(seconds);
}

void LiveRun::OnPluginKey(int direction) {
    view_->StepPlugin(direction);
    ShowTitle();
}

void LiveRun::OnSize(int width, int height, bool visible) {
    if (!view_) return;
    if (!visible)
        view_->Hide();
    else if (isHidden_)
        view_->Show(width, height);
    else
        view_->Resize(width, height);
    isHidden_ = !visible;
    session_.Sound().SetWatched(visible);
}

void LiveRun::ShowTitle() {
    const std::string file =
        options_.File.empty() ? kDemoTitle : std::filesystem::path(options_.File).filename().string();
    window_.SetTitle(file + " - " + view_->Plugin().Name + (session_.Sound().IsPlaying() ? "" : " (paused)"));
}

}  // namespace tdkplay
