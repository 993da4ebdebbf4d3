// Where plug-ins come from: CPluginRetriever owns the list, CTKVPluginRetriever fills it from the plug-in
// folder and the cache, CPluginRetrieverSet is the manager's hold on them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "src/plugins/PluginList.h"
#include "src/support/NQString.h"

namespace tdkviz {

class IPluginDirChangeReceiver;
class PreferencesMaker;

// `receiver` and `maker` may be null and outlive the retriever. [host]
class CPluginRetriever {
public:
    CPluginRetriever(IPluginDirChangeReceiver* receiver, PreferencesMaker* maker) : Receiver(receiver), maker_(maker) {}
    CPluginRetriever(const CPluginRetriever&) = delete;
    CPluginRetriever& operator=(const CPluginRetriever&) = delete;

    // Destroys the plug-ins.
    virtual ~CPluginRetriever() = default;
    // Loads every plug-in; those that fail leave the list.
    virtual void LoadAll();
    // Closes and unloads every plug-in, those that left the list too. One in which a thread was ended stays
    // in memory; waiting for such ones takes no longer than CVizPlugin::kPatience in all.
    virtual void UnloadAll();
    // No call of the receiver begins afterwards. The destructor does the same.
    virtual void StopWatching() {}

    PluginList* GetList() { return &Plugins; }

protected:
    PluginList Plugins;
    IPluginDirChangeReceiver* const Receiver;
    PreferencesMaker* const maker_;
};

// Scans when it is made, on the calling thread. New and changed plug-ins get loaded and stay in memory. From then
// on a DirectoryWatcher keeps the list in step with the folder.
class CTKVPluginRetriever : public CPluginRetriever {
public:
    // Takes the folder "Visualizations" beside the executable.
    CTKVPluginRetriever(IPluginDirChangeReceiver* receiver, PreferencesMaker* maker);
    CTKVPluginRetriever(IPluginDirChangeReceiver* receiver, PreferencesMaker* maker, const char* folder);
    ~CTKVPluginRetriever() override;
    void StopWatching() override;

private:
    // Gives the files that it found.
    std::vector<std::string> Retrieve();

    CNQString Folder;
    bool isWatching_ = false;
};

// Receiver and maker are set before the first AddRetriever.
class CPluginRetrieverSet {
public:
    void SetReceiver(IPluginDirChangeReceiver* receiver) { receiver_ = receiver; }
    void SetPreferencesMaker(PreferencesMaker* maker) { maker_ = maker; }
    // Makes a CTKVPluginRetriever. False without memory.
    bool AddRetriever();
    // The first retriever's list; null before there is one.
    PluginList* GetList() const { return list_; }
    void StopWatching();
    void UnloadAll();

private:
    std::vector<std::unique_ptr<CPluginRetriever>> retrievers_;
    PluginList* list_ = nullptr;
    IPluginDirChangeReceiver* receiver_ = nullptr;
    PreferencesMaker* maker_ = nullptr;
};

}  // namespace tdkviz
