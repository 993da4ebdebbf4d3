// IPluginDirChangeReceiver: who is told that plug-in files came or went.
#pragma once

namespace tdkviz {

class CVizPlugin;

// Not counted. Called without a lock. [watch]
class IPluginDirChangeReceiver {
public:
    // `plugin` stands at the end of the list, which owns it.
    virtual void OnPluginAdded(CVizPlugin* plugin) = 0;
    // The file has gone; `plugin` is still in the list when the call starts.
    virtual void OnPluginRemoved(CVizPlugin* plugin) = 0;

protected:
    ~IPluginDirChangeReceiver() = default;
};

}  // namespace tdkviz
