// The add-on in the player's process: loads tdkviz from a folder, keeps the component, and takes it down
// in the order that the contract asks for.
#pragma once

#include <tdkviz/viz.h>
#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "player/base/PictureSettings.h"
#include "player/host/HostContext.h"

namespace tdkplay {

// The folder in which the running program really lies, without a separator at its end. What counts as that folder for
// the plug-ins is another matter (PluginFolders).
std::string OwnFolder();

class AddOn {
public:
    // Throws PlayerError with kNoAddOn. The context must outlive this object, and so must the audio: while
    // a hook is registered, deliveries may come.
    AddOn(const std::string& folder, HostContext& context);
    ~AddOn();
    AddOn(const AddOn&) = delete;
    AddOn& operator=(const AddOn&) = delete;

    IMPAVizMgr& Manager() { return *manager_; }
    ITKCommandButton& Button() { return *component_; }

    // Once: puts the options in force that are given. They are for this run: what the user had set comes back
    // at the end, unless the user has changed it meanwhile.
    void Configure(const PictureSettings& settings);
    // What is in force; and the user's own change of it, which stays.
    PictureSettings Picture() const;
    void Change(const PictureSettings& settings);
    // Another piece begins.
    void AnnounceTrack();

private:
    struct LibraryCloser {
        using pointer = HMODULE;
        void operator()(HMODULE library) const { FreeLibrary(library); }
    };
    // A setting of the user's that an option stands in for.
    struct Override {
        const char* Key;
        uint32_t Before;
        uint32_t Put;
    };

    void Start(const std::string& folder, HostContext& context);
    void RestoreConfiguration();

    std::unique_ptr<HMODULE, LibraryCloser> library_;
    ComPtr<ITKCommandButton> component_;
    ComPtr<IMPAVizMgr> manager_;
    ComPtr<IMPAAdvancedConfiguration> configuration_;
    std::vector<Override> overridden_;
};

}  // namespace tdkplay
