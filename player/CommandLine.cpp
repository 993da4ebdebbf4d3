#include "player/CommandLine.h"

#include <strings.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstdio>
#include <iostream>
#include <map>

#include "player/base/ExitCode.h"
#include "player/render/RenderTarget.h"
#include "player/sound/AudioOutput.h"
#include "player/sound/DeviceOffsets.h"
#include "player/sound/Gain.h"
#include "player/sound/SilentOutput.h"

namespace tdkplay {
namespace {

constexpr uint32_t kSlowestRate = 10;
constexpr uint32_t kFastestRate = 30;
constexpr double kLongestTime = 24.0 * 3600.0;

constexpr char kFooter[] =
    "Keys: Space pauses, Left and Right go 5 seconds, Home to the start, N and B (or Page Down and Page Up) to the\n"
    "next piece and the one before; Up and Down change the plug-in, + and - the volume; [ and ] shift the pictures\n"
    "against the sound (with Shift: more); S opens the settings, M or a right click the menu, T hides the strip below\n"
    "the picture, F, F11 or a double click fill the screen, Escape goes back or quits. The wheel changes the volume.\n"
    "Files and folders that are dropped on the window play at once.\n"
    "A run in a window remembers its size, volume, plug-in, device, each device's offset and whether it stays above\n"
    "other windows for the next one; options win over that.\n"
    "Exit codes: 0 done, 2 usage, 3 file can't be read, 4 unknown format, 5 unknown plug-in, 6 no plug-ins,\n"
    "7 no display, 8 add-on can't be loaded, 9 picture can't be written, 10 sound output doesn't open,\n"
    "11 stored settings can't be read or cleared, 12 no ffmpeg, 13 ffmpeg failed,\n"
    "20 a checked plug-in has faults, 130 interrupted.";
// The name that stands for the sound server's own choice.
constexpr char kDefaultDevice[] = "default";

// What CLI11 fills and Options doesn't keep as it stands.
struct RawOptions {
    std::string Size;
    std::optional<size_t> Views;
    std::string Device;
    std::string Capture;
    std::vector<std::string> Pictures;
    std::vector<double> Times;
    bool NoAudio = false;
};

PlayerError UsageError(const std::string& message) {
    return {ExitCode::kUsage, message};
}

// Empty text for a number of seconds, else what is wrong with it. Not-a-number fails both comparisons.
std::string CheckTime(const std::string& text) {
    double seconds = 0;
    if (CLI::detail::lexical_cast(text, seconds) && seconds >= 0.0 && seconds <= kLongestTime) return {};
    return "\"" + text + "\" isn't a number of seconds from 0 to a day";
}

PictureSize ParseSize(const std::string& text) {
    const std::optional<PictureSize> size = PictureSize::FromText(text);
    if (!size) throw UsageError("--size: \"" + text + "\" isn't WIDTHxHEIGHT");
    if (!size->IsWithinBounds())
        throw UsageError("--size: each side must be from " + std::to_string(kSmallestSide) + " to " +
                         std::to_string(kLargestSide) + " pixels");
    return *size;
}

void PairSnapshots(const RawOptions& raw, Options& options) {
    if (raw.Pictures.size() != raw.Times.size())
        throw UsageError("each --snapshot FILE needs an --at SECONDS of its own");
    for (size_t i = 0; i < raw.Pictures.size(); ++i) options.Snapshots.push_back({raw.Pictures[i], raw.Times[i]});
    std::stable_sort(options.Snapshots.begin(), options.Snapshots.end(),
                     [](const SnapshotRequest& a, const SnapshotRequest& b) { return a.At < b.At; });
    if (options.Duration && !options.Snapshots.empty() && options.Snapshots.back().At > *options.Duration)
        throw UsageError("--at lies beyond --duration");
}

void CountViews(const RawOptions& raw, Options& options) {
    const size_t most = raw.Views.value_or(kMostViews);
    if (options.Plugins.size() > most && options.Sheet.empty())
        throw UsageError("--viz names more plug-ins than there are views (" + std::to_string(most) + ")");
    options.Views = raw.Views.value_or(std::max<size_t>(options.Plugins.size(), 1));
}

void Exclude(const CLI::App& app, const std::string& what, std::initializer_list<const char*> others) {
    for (const char* option : others)
        if (app.count(option) != 0) throw UsageError(what + " excludes " + option);
}

void CheckRendering(const CLI::App& app, const Options& options) {
    const bool isSheet = !options.Sheet.empty();
    if (options.Render.empty()) {
        if (app.count("--audio") != 0) throw UsageError("--audio needs --render");
        if (options.Seed && !isSheet) throw UsageError("--seed needs --render or --sheet");
        if (options.Json && options.Check.empty()) throw UsageError("--json needs --render or --check");
    }
    if (isSheet)
        Exclude(app, "--sheet", {"--render", "--snapshot", "--window", "--loop", "--shuffle", "--views", "--offset"});
    if (options.Render.empty()) return;
    Exclude(app, "--render", {"--snapshot", "--window", "--loop", "--shuffle", "--offset"});
    if (!RenderTarget::FromPath(options.Render))
        throw UsageError("--render: \"" + options.Render + "\" is no .mp4, .mkv, .y4m and no folder with / at its end");
}

void DeclareRendering(CLI::App& app, Options& options, const std::map<std::string, bool>& onOff) {
    app.add_option("--render", options.Render, "Render the song to OUT.mp4, .mkv or .y4m, or as pictures to OUT/")
        ->type_name("OUT");
    app.add_option("--sheet", options.Sheet,
                   "Draw all plug-ins, or those that --viz names, over the song as one picture")
        ->type_name("OUT.png");
    app.add_option("--seed", options.Seed, "Rendering, sheet: where the changing effects begin (0)")
        ->type_name("NUMBER");
    app.add_option("--audio", options.RenderAudio, "Rendering: the song in the video, on or off (on)")
        ->transform(CLI::CheckedTransformer(onOff, CLI::ignore_case))
        ->type_name("[on|off]");
    app.add_flag("--json", options.Json, "Rendering: progress as lines of JSON; checking: the report");
}

void DeclareChecking(CLI::App& app, Options& options) {
    app.add_option("--check", options.Check, "Try a plug-in in every way and print a report")
        ->type_name("PLUGIN.tkv")
        ->excludes("--render");
    // For the player itself and its tests.
    app.add_option("--check-only", options.Checking.Only)->group("")->needs("--check");
    app.add_option("--check-inside", options.Checking.Inside)->group("")->needs("--check");
    app.add_option("--check-effort", options.Checking.Effort)->group("")->needs("--check");
}

void CheckListening(const CLI::App& app) {
    if (app.count("--capture") == 0) return;
    Exclude(app, "--capture",
            {"FILES", "--render", "--sheet", "--snapshot", "--output", "--no-audio", "--device", "--volume", "--loop",
             "--shuffle"});
}

void DeclareListening(CLI::App& app, Options& options, RawOptions& raw) {
    app.add_option("--capture", raw.Capture,
                   "Show what the system plays instead of a file, or what this output or input has")
        ->type_name("[DEVICE]")
        ->expected(0, 1);
    app.add_option("--offset", options.Offset,
                   "Milliseconds that the pictures come later for this device, -500 to 2000")
        ->check(CLI::Range(kSmallestOffset, kLargestOffset))
        ->type_name("MS");
    app.add_flag("--devices", options.Devices, "List the sound devices: output or input, name, description");
}

void Declare(CLI::App& app, Options& options, RawOptions& raw) {
    const std::map<std::string, bool> onOff = {{"on", true}, {"off", false}};
    app.set_version_flag("--version", TDKVIZ_VERSION);
    app.footer(kFooter);
    app.add_option("FILES", options.Files,
                   "Audio files, folders of them, and lists (.m3u, .m3u8); without any the player's own piece");
    app.add_flag("--list", options.List, "List the plug-ins: name, path");
    app.add_option("--viz", options.Plugins,
                   "Plug-in to show: its name, its file's name, how one begins, or a path to a file; one for each view")
        ->type_name("NAME")
        ->expected(1)
        ->allow_extra_args(false)
        ->take_all();
    app.add_option("--views", raw.Views, "How many plug-ins to show side by side (1, or as many as --viz names)")
        ->check(CLI::Range(size_t{1}, kMostViews));
    app.add_option("--size", raw.Size, "Size of the picture (as last, at first 640x480)")->type_name("WxH");
    app.add_option("--fps", options.Picture.FrameRate, "Frames a second, 10 to 30")
        ->check(CLI::Range(kSlowestRate, kFastestRate));
    app.add_option("--effects", options.Picture.Effects, "Feedback effects on or off")
        ->transform(CLI::CheckedTransformer(onOff, CLI::ignore_case))
        ->type_name("[on|off]");
    app.add_option("--randomize", options.Picture.Randomize, "Effects that change by themselves, on or off")
        ->transform(CLI::CheckedTransformer(onOff, CLI::ignore_case))
        ->type_name("[on|off]");
    app.add_option("--snapshot", raw.Pictures, "Write a picture (PNG); may come several times")
        ->type_name("FILE")
        ->expected(1)
        ->allow_extra_args(false)
        ->take_all();
    app.add_option("--at", raw.Times, "When to take it, in seconds heard; one for each --snapshot")
        ->check(CLI::Validator(CheckTime, ""))
        ->type_name("SECONDS")
        ->expected(1)
        ->allow_extra_args(false)
        ->take_all();
    auto* headless = app.add_flag("--headless", options.Headless,
                                  "Show no window; with --snapshot, run faster than real time without sound");
    app.add_flag("--window", options.Window, "Show a window or fail")->excludes(headless);
    app.add_option("--duration", options.Duration, "Stop after this much has been heard")
        ->check(CLI::Validator(CheckTime, ""))
        ->type_name("SECONDS");
    app.add_flag("--loop", options.Loop, "Begin again at the end");
    app.add_flag("--shuffle", options.Shuffle, "Play the pieces in another order each time");
    auto* output =
        app.add_option("--output", options.Output, "Where the sound goes")->check(CLI::IsMember(OutputNames()));
    app.add_flag("--no-audio", raw.NoAudio, "Play without sound")->excludes(output);
    app.add_option("--device", raw.Device, "Sound device, as the sound server names it; \"default\": its own choice")
        ->type_name("NAME");
    app.add_option("--volume", options.Volume, "How loud, 0 to 100 percent; the pictures don't change")
        ->check(CLI::Range(0, kFullVolume));
    DeclareListening(app, options, raw);
    auto* print = app.add_flag("--settings", options.PrintSettings, "Print all settings that are stored");
    app.add_flag("--reset-settings", options.ResetSettings, "Clear all settings that are stored")->excludes(print);
    app.add_option("--make-demo", options.MakeDemo, "Write the player's own piece to this file (WAV)")
        ->type_name("FILE");
    DeclareRendering(app, options, onOff);
    DeclareChecking(app, options);
}

// A switch may stand alone, and what follows it is then not its value.
constexpr std::array kSwitches = {"--effects", "--randomize", "--audio"};

std::vector<std::string> WithSwitchValues(int argc, const char* const* argv) {
    std::vector<std::string> arguments;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const std::string next = i + 1 < argc ? argv[i + 1] : "";
        const bool standsAlone = std::find(kSwitches.begin(), kSwitches.end(), argument) != kSwitches.end() &&
                                 strcasecmp(next.c_str(), "on") != 0 && strcasecmp(next.c_str(), "off") != 0;
        arguments.push_back(standsAlone ? argument + "=on" : argument);
    }
    std::reverse(arguments.begin(), arguments.end());  // the order in which CLI11 takes them
    return arguments;
}

}  // namespace

std::optional<Options> ParseCommandLine(int argc, const char* const* argv) {
    Options options;
    RawOptions raw;
    CLI::App app("Plays an audio file and shows the music.", "tdkplay");
    Declare(app, options, raw);
    try {
        app.parse(WithSwitchValues(argc, argv));
    } catch (const CLI::Success& success) {  // --help and --version
        app.exit(success, std::cout, std::cout);
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        const std::string message = error.what();
        throw UsageError(message.substr(0, message.find('\n')));
    }
    if (!raw.Size.empty()) options.Size = ParseSize(raw.Size);
    PairSnapshots(raw, options);
    CheckRendering(app, options);
    CountViews(raw, options);
    CheckListening(app);
    if (app.count("--capture") != 0) options.Capture = raw.Capture == kDefaultDevice ? "" : raw.Capture;
    if (raw.NoAudio) options.Output = kSilentName;
    if (!raw.Device.empty()) options.Device = raw.Device == kDefaultDevice ? "" : raw.Device;
    if (options.Device && options.Output == kSilentName) throw UsageError("--device: this output has no devices");
    return options;
}

}  // namespace tdkplay
