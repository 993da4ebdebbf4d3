#include "player/render/SheetRun.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <numeric>

#include "player/base/ClockText.h"
#include "player/base/ExitCode.h"
#include "player/render/ContactSheet.h"
#include "player/render/SteppedRun.h"
#include "player/settings/PrivateRegistry.h"
#include "player/sound/SilentOutput.h"

namespace tdkplay {
namespace {

constexpr PictureSize kUsualSize = {320, 240};
// Parts of the song.
constexpr std::array kMoments = {0.2, 0.4, 0.6, 0.8};
constexpr double kUnknownLength = 60.0;  // seconds
// Shorter pieces tell tenths of a second apart.
constexpr double kLongPiece = 30.0;
constexpr double kTenth = 0.1;

Options WithPictureSize(Options options) {
    options.Size = options.Size.value_or(kUsualSize);
    return options;
}

double SecondsOf(const Options& options, const Decoder& decoder) {
    const double whole = decoder.TotalFrames() == 0
                             ? kUnknownLength
                             : static_cast<double>(decoder.TotalFrames()) / decoder.Format().Rate;
    return std::min(whole, options.Duration.value_or(whole));
}

std::vector<double> MomentsOf(double seconds) {
    std::vector<double> moments;
    const double step = seconds < kLongPiece ? kTenth : 1.0;
    for (const double part : kMoments) moments.push_back(std::round(part * seconds / step) * step);
    return moments;
}

std::string TextOf(double moment, double seconds) {
    if (seconds >= kLongPiece) return ClockText(moment);
    std::array<char, 32> text = {};
    std::snprintf(text.data(), text.size(), "%.1f s", moment);
    return text.data();
}

std::vector<size_t> PluginsOf(const Options& options, const Session& session) {
    if (!options.Plugins.empty()) return session.ShownPlugins();
    std::vector<size_t> all(session.Plugins().size());
    std::iota(all.begin(), all.end(), size_t{0});
    return all;
}

SheetContent ContentOf(const Options& options, const std::string& title, const Session& session,
                       const std::vector<size_t>& plugins, double seconds) {
    SheetContent content;
    content.Title = title;
    for (const size_t plugin : plugins) content.Names.push_back(session.Plugins()[plugin].Name);
    for (const double moment : MomentsOf(seconds)) content.Moments.push_back(TextOf(moment, seconds));
    content.Size = options.SizeOrUsual();
    return content;
}

}  // namespace

void DrawSheet(const Options& asked, const std::string& title, std::unique_ptr<Decoder> decoder,
               const Interrupt& interrupt) {
    const Options options = WithPictureSize(asked);
    const double seconds = SecondsOf(options, *decoder);
    const PrivateRegistry registry;
    SteppedRun::Prepare(options);
    Session session(options, std::move(decoder), kSilentName);
    const std::vector<size_t> plugins = PluginsOf(options, session);
    ContactSheet sheet(ContentOf(options, title, session, plugins, seconds));

    SteppedRun run(options, session, interrupt);
    std::vector<HWND> windows;
    for (const size_t plugin : plugins) windows.push_back(run.AddViews({plugin}));
    run.Play();
    const std::vector<double> moments = MomentsOf(seconds);
    for (size_t moment = 0; moment < moments.size(); ++moment) {
        run.AdvanceTo(static_cast<uint64_t>(std::llround(moments[moment] * 1000.0)));
        if (interrupt.IsRequested()) throw PlayerError(ExitCode::kInterrupted, "interrupted; nothing is written");
        for (size_t strip = 0; strip < windows.size(); ++strip) sheet.Place(strip, moment, ReadWindow(windows[strip]));
    }
    WritePng(sheet.Finished(), options.Sheet);
}

}  // namespace tdkplay
