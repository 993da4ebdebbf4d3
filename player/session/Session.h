// What every run of the player stands on, in the order in which it begins; it ends the other way round.
#pragma once

#include <memory>
#include <vector>

#include "player/host/AddOn.h"
#include "player/host/HostContext.h"
#include "player/host/PluginCatalog.h"
#include "player/session/Options.h"
#include "player/settings/PlayerSettings.h"
#include "player/sound/Playback.h"

namespace tdkplay {

class Session {
public:
    // What the options leave open is as remembered; a run that captures needs no decoder. Throws PlayerError with
    // kNoAddOn, kNoPlugins, kUnknownPlugin or kNoSound.
    Session(const Options& options, std::unique_ptr<Decoder> decoder, const std::string& outputKind,
            const PlayerSettings& remembered = {})
        : addOn_(OwnFolder(), *context_),
          plugins_(ListPlugins(addOn_.Manager())),
          shownPlugins_(ChoosePlugins(options, remembered)),
          playback_(MakePlayback(options, std::move(decoder), outputKind, remembered)) {
        playback_.SetVolume(options.Volume.value_or(remembered.Volume.value_or(kFullVolume)));
        playback_.SetOffsets(remembered.Offsets);
        if (options.Offset) playback_.SetOffset(*options.Offset);
        addOn_.Configure(options.Picture);
        addOn_.AnnounceTrack();
    }

    AddOn& Component() { return addOn_; }
    IMPAVizMgr& Manager() { return addOn_.Manager(); }
    ITKCommandButton& Button() { return addOn_.Button(); }
    const std::vector<PluginInfo>& Plugins() const { return plugins_; }
    // For each view the index of the plug-in that it begins with.
    const std::vector<size_t>& ShownPlugins() const { return shownPlugins_; }
    Playback& Sound() { return playback_; }

private:
    std::vector<size_t> ChoosePlugins(const Options& options, const PlayerSettings& remembered) const {
        std::vector<size_t> chosen;
        for (const std::string& name : options.Plugins) chosen.push_back(FindPlugin(plugins_, name));
        if (chosen.empty()) chosen.push_back(FindPluginFile(plugins_, remembered.Plugin));
        FillUp(chosen, options.Views, plugins_.size());
        return chosen;
    }
    Playback MakePlayback(const Options& options, std::unique_ptr<Decoder> decoder, const std::string& outputKind,
                          const PlayerSettings& remembered) {
        if (options.Capture) return Playback(*context_, *options.Capture);
        const bool mustHaveDevice = options.Device && !options.Device->empty();
        return Playback(*context_, std::move(decoder),
                        {outputKind, options.Device.value_or(remembered.Device), mustHaveDevice}, options.Loop);
    }

    const ComPtr<HostContext> context_ = MakeCom<HostContext>();
    AddOn addOn_;
    const std::vector<PluginInfo> plugins_;
    const std::vector<size_t> shownPlugins_;
    Playback playback_;
};

}  // namespace tdkplay
