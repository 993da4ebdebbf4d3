// A private X server for tests.
#pragma once

#include <sys/types.h>

#include <string>

// Runs as long as the object lives, under a display number of its own.
class XServer {
public:
    // `options` are more words for the server's command line. Not Running() if the program can't be started.
    explicit XServer(int depth, const std::string& options = "");
    ~XServer();
    XServer(const XServer&) = delete;
    XServer& operator=(const XServer&) = delete;

    static bool IsInstalled();
    static constexpr int kWidth = 800;
    static constexpr int kHeight = 600;

    bool Running() const { return !name_.empty(); }
    const std::string& Name() const { return name_; }  // as in DISPLAY
    // Makes it the display of windows to come.
    void Use() const;
    // Ends it, with all its clients' connections.
    void Kill();

private:
    pid_t process_ = -1;
    std::string name_;
};
