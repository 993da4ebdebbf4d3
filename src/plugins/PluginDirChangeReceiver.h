// IPluginDirChangeReceiver: who is told that plug-in files came or went.
#pragma once

namespace tdkviz {

class CVizPlugin;

// Not counted. What is called back into the host goes through DirectoryWatcher::CallOut, so that a stop of the watcher
// doesn't hang on it. [watch]
class IPluginDirChangeReceiver {
public:
    // `plugin` stands at the end of the list, which owns it.
    virtual void OnPluginAdded(CVizPlugin* plugin) = 0;
    // The file has gone; `plugin` is still in the list when the call starts. Once, until the file returns.
    virtual void OnPluginRemoved(CVizPlugin* plugin) = 0;
    // The same on later looks, as long as nobody has taken it off the list.
    virtual void OnPluginStillGone(CVizPlugin* plugin) = 0;

protected:
    ~IPluginDirChangeReceiver() = default;
};

}  // namespace tdkviz
