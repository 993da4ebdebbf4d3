// SettingsModel: what the settings dialog knows of the running add-on.
#pragma once

#include <cstdint>

#include "src/render/VizEffectParams.h"
#include "src/support/NQString.h"

namespace tdkviz {

class CVizPlugin;

// Every change takes effect at once, and is stored when the add-on ends. Called on the dialog's thread.
class SettingsModel {
public:
    // The user's record, which the worker reads while the dialog writes it.
    virtual VizEffectParams& GetUserEffects() = 0;

    virtual bool IsEffectsOn() const = 0;
    virtual void SetEffectsOn(bool on) = 0;
    virtual bool IsRandomizeOn() const = 0;
    virtual void SetRandomize(bool on) = 0;

    // The host says whether the dialog offers this switch.
    virtual bool IsAlwaysOnTopOffered() const = 0;
    virtual int32_t GetAlwaysOnTop() = 0;
    virtual void SetAlwaysOnTop(bool on) = 0;

    // For output windows made from here on.
    virtual bool IsDirectDrawUsed() const = 0;
    virtual void SetUseDirectDraw(bool use) = 0;

    // Frames a second; clamped to 10 to 30.
    virtual uint32_t GetFrameRate() const = 0;
    virtual void ApplyFrameRate(uint32_t rate) = 0;

    // Of the plug-in that a view took last; empty if none did.
    virtual CNQString GetCurrentPluginPath() = 0;
    // Null if the path isn't known. The plug-in lives as long as the model.
    virtual CVizPlugin* FindPlugin(const char* path) = 0;

protected:
    ~SettingsModel() = default;
};

}  // namespace tdkviz
