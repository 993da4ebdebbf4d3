// Signals that end the process are told to the parent first; a touch of a guarded buffer's zones is remembered, and
// the plug-in goes on.
#pragma once

#include <memory>

namespace tdkplay::check {

// For the whole process. Writes no core files.
void InstallCrashHandler();

// Room for the handler to run in on a thread whose own stack has overflowed. One for each thread, made on it.
class HandlerStack {
public:
    HandlerStack();
    ~HandlerStack();
    HandlerStack(const HandlerStack&) = delete;
    HandlerStack& operator=(const HandlerStack&) = delete;

private:
    std::unique_ptr<char[]> room_;
};

}  // namespace tdkplay::check
