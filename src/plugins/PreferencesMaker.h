// PreferencesMaker: where a plug-in's preferences object comes from.
#pragma once

#include <tdkviz/values.h>

namespace tdkviz {

class PreferencesMaker {
public:
    // The store that all plug-ins share, with one reference for the caller, or null. [load]
    virtual IKVAPreferences* MakePreferences() = 0;

protected:
    ~PreferencesMaker() = default;
};

}  // namespace tdkviz
