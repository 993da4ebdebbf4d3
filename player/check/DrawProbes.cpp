#include <algorithm>
#include <cstring>

#include "player/base/Joined.h"
#include "player/check/GuardedBuffer.h"
#include "player/check/Probes.h"
#include "player/check/TestSound.h"

namespace tdkplay::check {
namespace {

constexpr PictureSize kSizes[] = {{1, 1},    {2, 1},    {1, 2},     {1, 7},     {5, 1},       {3, 3},      {33, 17},
                                  {127, 65}, {64, 480}, {321, 243}, {640, 480}, {1920, 1080}, {3840, 2160}};
constexpr PictureSize kRowSizes[] = {{1, 1}, {3, 5}, {33, 17}, {320, 240}};
constexpr int kPaddings[] = {0, 12, 64};  // bytes behind a row
constexpr uint8_t kPaddingFill = 0x5A;
constexpr int kLargeArea = 1000 * 1000;  // for thorough checks only

// One picture in a layout of its own, drawn on with loud and quiet frames.
class LaidOutPicture {
public:
    LaidOutPicture(PictureSize size, int pitch, Against against)
        : size_(size),
          pitch_(pitch),
          rowBytes_(static_cast<size_t>(pitch < 0 ? -pitch : pitch)),
          buffer_("the picture", rowBytes_ * static_cast<size_t>(size.Height), against) {
        ForPadding([](uint8_t* padding, size_t count) { std::memset(padding, kPaddingFill, count); });
    }

    void Draw(CheckedPlugin& plugin, VizAnalysisFrame frame) {
        plugin.Draw(buffer_.Data(), size_.Width, size_.Height, pitch_, &frame);
        const std::string touched = buffer_.TakeTouched();
        if (!touched.empty()) throw ContractFault(touched + Where());
        ForPadding([&](const uint8_t* padding, size_t count) {
            for (size_t i = 0; i < count; ++i)
                if (padding[i] != kPaddingFill) throw ContractFault("wrote between the rows" + Where());
        });
    }

private:
    std::string Where() const {
        return ", in Draw " + size_.Text() + " with a pitch of " + std::to_string(pitch_) + " bytes";
    }
    template <typename Look>
    void ForPadding(Look look) {
        const size_t used = sizeof(uint32_t) * static_cast<size_t>(size_.Width);
        if (used == rowBytes_) return;
        for (size_t y = 0; y < static_cast<size_t>(size_.Height); ++y)
            look(buffer_.Data() + y * rowBytes_ + used, rowBytes_ - used);
    }

    const PictureSize size_;
    const int pitch_;
    const size_t rowBytes_;
    GuardedBuffer buffer_;
};

void DrawAllWays(CheckedPlugin& plugin, PictureSize size, int pitch, const std::vector<NamedFrame>& sounds) {
    for (const Against against : {Against::kEnd, Against::kBegin}) {
        LaidOutPicture picture(size, pitch, against);
        for (const NamedFrame& sound : sounds) picture.Draw(plugin, sound.Frame);
    }
}

// Nothing, all there can be, and something in between.
std::vector<NamedFrame> FewSounds() {
    const std::vector<NamedFrame> all = HardFrames();
    const auto named = [&all](const std::string& name) {
        const auto found =
            std::find_if(all.begin(), all.end(), [&name](const NamedFrame& sound) { return sound.Name == name; });
        return all.at(static_cast<size_t>(found - all.begin()));
    };
    return {named("silence"), named("full scale alternating"), named("noise")};
}

}  // namespace

void ProbeFrames(ProbeContext& context) {
    TestMusic music;
    PlayIn(context, kUsualSize, [&](PluginView& view) {
        for (size_t i = 0; i < kFramesPerSecond; ++i) view.Next(music.At(i));
    });
    context.Findings.Note("a second of music at " + kUsualSize.Text());
}

void ProbeSizes(ProbeContext& context) {
    LoadedPlugin loaded(context);
    if (loaded.Plugin.DrawsToWindow()) return context.Findings.Skip("it draws to a window");
    loaded.Plugin.SetActive(true);
    const std::vector<NamedFrame> sounds = FewSounds();
    PictureSize largest = kSizes[0];
    context.Frames.Run([&] {
        for (const PictureSize size : kSizes) {
            if (size.Width * size.Height > kLargeArea && !context.IsThorough()) continue;
            DrawAllWays(loaded.Plugin, size, -4 * size.Width, sounds);
            largest = size;
        }
    });
    loaded.Plugin.End();
    context.Findings.Note("1x1 to " + largest.Text() + " between guarded pages");
}

void ProbeRows(ProbeContext& context) {
    LoadedPlugin loaded(context);
    if (loaded.Plugin.DrawsToWindow()) return context.Findings.Skip("it draws to a window");
    loaded.Plugin.SetActive(true);
    const std::vector<NamedFrame> sounds = FewSounds();
    context.Frames.Run([&] {
        for (const PictureSize size : kRowSizes) {
            for (const int padding : kPaddings) {
                DrawAllWays(loaded.Plugin, size, -(4 * size.Width + padding), sounds);
                DrawAllWays(loaded.Plugin, size, 4 * size.Width + padding, sounds);
            }
        }
    });
    loaded.Plugin.End();
    context.Findings.Note("rows from below and from above, with room between them");
}

void ProbeSounds(ProbeContext& context) {
    const std::vector<NamedFrame> sounds = HardFrames();
    const std::vector<std::string> told = {"silence", "full scale", "noise", "impulses"};
    const int turns = context.Turns(15, 3);
    PlayIn(context, kUsualSize, [&](PluginView& view) {
        for (const NamedFrame& sound : sounds) {
            try {
                for (int i = 0; i < turns; ++i) view.Next(sound.Frame);
            } catch (const ContractFault& fault) {
                throw ContractFault(std::string(fault.what()) + ", hearing " + sound.Name);
            }
        }
    });
    context.Findings.Note(Joined(told, ", ") + " and " + std::to_string(sounds.size() - told.size()) + " more");
}

void ProbeRecord(ProbeContext& context) {
    PlayIn(context, kSmallSize, [](PluginView& view) {
        for (const Against against : {Against::kEnd, Against::kBegin}) {
            for (const NamedFrame& sound : FewSounds()) view.DrawReadOnly(sound.Frame, against);
        }
    });
    context.Findings.Note("the analysis frame read only, between guarded pages");
}

void ProbeResize(ProbeContext& context) {
    constexpr PictureSize kSteps[] = {{320, 240}, {1, 1}, {640, 480}, {33, 17}, {2, 300}, {300, 2}, {64, 48}};
    uint32_t noise = 1;
    const int turns = context.Turns(20, 3);
    PlayIn(context, kUsualSize, [&](PluginView& view) {
        for (int i = 0; i < turns; ++i) {
            for (const PictureSize size : kSteps) {
                view.Resize(size);
                // Every other turn a size stays for some frames.
                for (int frames = i % 2 == 0 ? 1 : 4; frames > 0; --frames) view.Next(NoiseFrame(noise));
                view.RequireUntouched();
            }
        }
    });
    context.Findings.Note(std::to_string(turns * static_cast<int>(std::size(kSteps))) +
                          " changes of size while playing");
}

}  // namespace tdkplay::check
