// A private PulseAudio server for tests, with two outputs that make no sound: "one", which is the default, and "two".
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "tests/support/TemporaryFolder.h"

// The server of this process's and its children's own libpulse, as long as the object lives.
class SoundServer {
public:
    static bool IsInstalled();

    SoundServer();
    ~SoundServer();
    SoundServer(const SoundServer&) = delete;
    SoundServer& operator=(const SoundServer&) = delete;

    // False if it doesn't come up.
    bool Start();
    // At once, without a word to its clients.
    void Kill();
    // Has pactl do this, and gives what it prints.
    std::string Ask(const std::string& command) const;
    // Another output, which SoundServer::Unplug takes away.
    void Plug(const std::string& name);
    void Unplug(const std::string& name) const;

    // Another program plays a tone to this output until StopTones, by far the louder the higher it is. When the default
    // changes the server may take it along.
    void PlayTone(int hertz, const std::string& output);
    void StopTones();

private:
    const TemporaryFolder folder_;
    pid_t process_ = -1;
    std::vector<pid_t> tones_;
};
