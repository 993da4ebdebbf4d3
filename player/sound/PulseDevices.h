// The devices of a PulseAudio server: where sound goes, and what can be listened to.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "player/sound/PulseConnection.h"

namespace tdkplay {

struct PulseDevice {
    std::string Name;
    std::string Description;  // for people
    std::string Source;       // what to record from to hear it: itself, or an output's monitor
    bool IsOutput = false;
    bool IsDefault = false;  // the server's choice of its kind
};

// Outputs first, each kind in the server's order; the monitors of outputs are not among the inputs. With the lock of
// the connection held, and not on its thread.
std::vector<PulseDevice> ListPulseDevices(const PulseConnection& connection);

// The one of this name, or the default output if there is no name.
std::optional<PulseDevice> FindPulseDevice(const std::vector<PulseDevice>& devices, const std::string& name);

// For a message: "alsa_output.usb, alsa_input.usb", or "none".
std::string PulseDeviceNames(const std::vector<PulseDevice>& devices, bool withInputs);

}  // namespace tdkplay
