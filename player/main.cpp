// tdkplay: plays an audio file and shows the music. What it does in which order for an add-on that shows
// pictures is in Session, LiveRun and AddOn.
#include <tdkplatform.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <optional>

#include "player/CommandLine.h"
#include "player/LiveRun.h"
#include "player/base/ExitCode.h"
#include "player/base/Interrupt.h"
#include "player/check/CheckRun.h"
#include "player/host/PluginFolders.h"
#include "player/list/Jukebox.h"
#include "player/render/RenderRun.h"
#include "player/render/SheetRun.h"
#include "player/render/SteppedRun.h"
#include "player/session/Session.h"
#include "player/settings/PrivateRegistry.h"
#include "player/settings/StoredSettings.h"
#include "player/sound/DemoPiece.h"
#include "player/sound/DeviceList.h"
#include "player/sound/SilentOutput.h"

namespace tdkplay {
namespace {

constexpr char kPicturesFolder[] = "out";
// When to take pictures if nobody says so: these seconds, or these parts of a shorter piece.
constexpr std::array kPictureTimes = {6.0, 12.0, 20.0};
constexpr std::array kPictureParts = {0.3, 0.6, 0.9};
constexpr int kColourDepth = 32;

enum class Mode {
    kWindow,       // on the display, in real time
    kInvisible,    // in memory, in real time
    kSnapshots,    // in memory, stepped: the pictures that were asked for
    kAllPictures,  // in memory, stepped: some pictures of each plug-in
};

Mode ChooseMode(const Options& options) {
    if (options.Headless) return options.Snapshots.empty() ? Mode::kInvisible : Mode::kSnapshots;
    if (std::strcmp(TdkpDisplayName(), "x11") == 0) return Mode::kWindow;
    if (options.Window || options.Capture)
        throw PlayerError(ExitCode::kNoDisplay, "there is no display to show a window on");
    return options.Snapshots.empty() ? Mode::kAllPictures : Mode::kSnapshots;
}

double Seconds(const Decoder& decoder) {
    return static_cast<double>(decoder.TotalFrames()) / decoder.Format().Rate;
}

void RequireOnePiece(const char* option, const Jukebox& jukebox) {
    if (jukebox.Size() == 1) return;
    throw PlayerError(ExitCode::kUsage,
                      std::string(option) + " takes one piece, not " + std::to_string(jukebox.Size()));
}

void RequireSnapshotsWithin(const Options& options, const Decoder& decoder) {
    if (options.Snapshots.empty() || options.Loop || decoder.TotalFrames() == 0) return;
    if (options.Snapshots.back().At <= Seconds(decoder)) return;
    std::array<char, 100> message = {};
    std::snprintf(message.data(), message.size(), "--at %g lies beyond the end of the piece at %.1f seconds",
                  options.Snapshots.back().At, Seconds(decoder));
    throw PlayerError(ExitCode::kUsage, message.data());
}

void List(const Options& options) {
    const Interrupt interrupt;
    const PluginFolders pluginFolders(options.Plugins);
    const auto context = MakeCom<HostContext>();
    AddOn addOn(OwnFolder(), *context);
    const std::vector<PluginInfo> plugins = ListPlugins(addOn.Manager());
    FindPlugin(plugins, {});  // none at all is an error
    for (const PluginInfo& plugin : plugins) std::printf("%s\t%s\n", plugin.Name.c_str(), plugin.RealPath().c_str());
}

void PlayLive(const Options& options, Jukebox& jukebox, std::unique_ptr<Decoder> decoder, Interrupt& interrupt) {
    SettingsKeeper keeper;
    Session session(options, std::move(decoder), options.Output, keeper.Settings());
    LiveRun(options, session, jukebox, interrupt, keeper).Run();
}

void TakeSnapshots(const Options& options, std::unique_ptr<Decoder> decoder, Interrupt& interrupt) {
    SteppedRun::Prepare(options);
    Session session(options, std::move(decoder), kSilentName);
    SteppedRun run(options, session, interrupt);
    run.AddViews(session.ShownPlugins(), options.Snapshots);
    run.Run();
}

std::vector<SnapshotRequest> PicturesOf(const PluginInfo& plugin, double seconds) {
    std::vector<SnapshotRequest> pictures;
    const bool isLong = seconds == 0.0 || seconds > kPictureTimes.back();
    for (size_t i = 0; i < kPictureTimes.size(); ++i) {
        const std::string file = plugin.FileName() + "-" + std::to_string(i + 1) + ".png";
        pictures.push_back(
            {std::string(kPicturesFolder) + "/" + file, isLong ? kPictureTimes[i] : kPictureParts[i] * seconds});
    }
    return pictures;
}

void TakeAllPictures(const Options& options, std::unique_ptr<Decoder> decoder, Interrupt& interrupt) {
    SteppedRun::Prepare(options);
    const double seconds = Seconds(*decoder);
    Session session(options, std::move(decoder), kSilentName);
    SteppedRun run(options, session, interrupt);
    std::error_code ignored;  // WritePng tells
    std::filesystem::create_directories(kPicturesFolder, ignored);
    for (size_t plugin = 0; plugin < session.Plugins().size(); ++plugin)
        run.AddViews({plugin}, PicturesOf(session.Plugins()[plugin], seconds));
    run.Run();
    std::printf("There is no display, so here are pictures of each plug-in: %s\n",
                std::filesystem::absolute(kPicturesFolder, ignored).c_str());
}

void Run(const Options& options) {
    if (!options.MakeDemo.empty()) return WriteDemoPiece(options.MakeDemo);
    if (options.List) return List(options);
    if (options.Devices) return PrintDevices();
    if (options.PrintSettings) return PrintStoredSettings();
    if (options.ResetSettings) return ResetStoredSettings();

    Jukebox jukebox(options.Files, {options.Shuffle, options.Loop});
    if (!options.Render.empty()) RequireOnePiece("--render", jukebox);
    if (!options.Sheet.empty()) RequireOnePiece("--sheet", jukebox);
    std::unique_ptr<Decoder> decoder;
    if (!options.Capture) decoder = jukebox.OpenFirst();
    if (decoder && jukebox.Size() == 1) RequireSnapshotsWithin(options, *decoder);
    Interrupt interrupt;
    const PluginFolders pluginFolders(options.Plugins);
    if (!options.Render.empty()) return RenderRun::Render(options, jukebox.Heard().Path, std::move(decoder), interrupt);
    if (!options.Sheet.empty()) return DrawSheet(options, jukebox.Heard().Title, std::move(decoder), interrupt);
    const Mode mode = ChooseMode(options);
    // Pictures and runs that nobody sees don't depend on what the user has set.
    std::optional<PrivateRegistry> registry;
    if (mode != Mode::kWindow || !options.Snapshots.empty()) registry.emplace();
    switch (mode) {
        case Mode::kWindow:
            return PlayLive(options, jukebox, std::move(decoder), interrupt);
        case Mode::kInvisible:
            TdkpUseMemoryDisplay(options.SizeOrUsual().Width, options.SizeOrUsual().Height, kColourDepth);
            return PlayLive(options, jukebox, std::move(decoder), interrupt);
        case Mode::kSnapshots:
            RequireOnePiece("--snapshot", jukebox);
            return TakeSnapshots(options, std::move(decoder), interrupt);
        case Mode::kAllPictures:
            return TakeAllPictures(options, std::move(decoder), interrupt);
    }
}

ExitCode RunCommandLine(int argc, const char* const* argv) {
    try {
        const std::optional<Options> options = ParseCommandLine(argc, argv);
        if (options && !options->Check.empty()) return check::CheckPlugin(*options);
        if (options) Run(*options);
        return ExitCode::kDone;
    } catch (const PlayerError& error) {
        std::fprintf(stderr, "tdkplay: %s\n", error.what());
        return error.Code();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tdkplay: %s\n", error.what());
        return ExitCode::kInternalError;
    }
}

}  // namespace
}  // namespace tdkplay

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);  // a sound server that goes away is no reason to die
    return static_cast<int>(tdkplay::RunCommandLine(argc, argv));
}
