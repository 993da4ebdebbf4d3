#include "player/sound/DeviceList.h"

#include <cstdio>

#include "player/base/ExitCode.h"
#include "player/sound/PulseDevices.h"

namespace tdkplay {

void PrintDevices() {
    const std::unique_ptr<PulseConnection> connection = PulseConnection::Open();
    if (!connection) throw PlayerError(ExitCode::kNoSound, "there is no sound server");
    const PulseConnection::Lock lock(*connection);
    for (const PulseDevice& device : ListPulseDevices(*connection))
        std::printf("%s\t%s\t%s%s\n", device.IsOutput ? "output" : "input", device.Name.c_str(),
                    device.Description.c_str(), device.IsDefault ? "\tdefault" : "");
}

}  // namespace tdkplay
