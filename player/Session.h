// What every run of the player stands on, in the order in which it begins; it ends the other way round.
#pragma once

#include <memory>
#include <vector>

#include "player/AddOn.h"
#include "player/HostContext.h"
#include "player/Options.h"
#include "player/Playback.h"
#include "player/PluginCatalog.h"

namespace tdkplay {

class Session {
public:
    // Throws PlayerError with kNoAddOn, kNoPlugins, kUnknownPlugin or kNoSound.
    Session(const Options& options, std::unique_ptr<Decoder> decoder, const std::string& outputName)
        : addOn_(OwnFolder(), *context_),
          plugins_(ListPlugins(addOn_.Manager())),
          chosenPlugin_(FindPlugin(plugins_, options.Plugin)),
          playback_(*context_, std::move(decoder), outputName, options.Loop) {
        addOn_.Configure(options.Picture);
        addOn_.AnnounceTrack();
    }

    IMPAVizMgr& Manager() { return addOn_.Manager(); }
    const std::vector<PluginInfo>& Plugins() const { return plugins_; }
    size_t ChosenPlugin() const { return chosenPlugin_; }
    Playback& Sound() { return playback_; }

private:
    const ComPtr<HostContext> context_ = MakeCom<HostContext>();
    AddOn addOn_;
    const std::vector<PluginInfo> plugins_;
    const size_t chosenPlugin_;
    Playback playback_;
};

}  // namespace tdkplay
