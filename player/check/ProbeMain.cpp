#include "player/check/ProbeMain.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <tdkplatform.h>
#include <unistd.h>

#include <csignal>

#include "player/base/ExitCode.h"
#include "player/check/CheckList.h"
#include "player/check/ChildProcess.h"
#include "player/check/CrashHandler.h"

namespace tdkplay::check {
namespace {

constexpr int kScreenWidth = 1600;
constexpr int kScreenHeight = 1200;
constexpr int kScreenDepth = 32;

void MapCalls() {
    void* const shared = mmap(nullptr, sizeof(SharedCalls), PROT_READ | PROT_WRITE, MAP_SHARED, kCallsFile, 0);
    if (shared == MAP_FAILED) throw PlayerError(ExitCode::kUsage, "a check's own process is started by --check alone");
    SetOwnCalls(static_cast<SharedCalls*>(shared));
}

// What the plug-in starts gets neither the pipe nor a screen to open windows on.
void Seclude() {
    fcntl(kFindingsFile, F_SETFD, FD_CLOEXEC);
    fcntl(kCallsFile, F_SETFD, FD_CLOEXEC);
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    TdkpUseMemoryDisplay(kScreenWidth, kScreenHeight, kScreenDepth);
}

}  // namespace

void RunProbe(const std::string& name, const std::string& path, double effort) {
    const Check* const check = FindCheck(name);
    if (!check) throw PlayerError(ExitCode::kUsage, "there is no check \"" + name + "\"");
    MapCalls();
    Seclude();
    UseCallSlot(SharedCalls::kMainSlot);
    InstallCrashHandler();
    const HandlerStack stack;
    FindingWriter findings(kFindingsFile);
    {
        FrameThread frames;
        ProbeContext context = {path, effort, findings, frames};
        try {
            check->Run(context);
        } catch (const ContractFault& fault) {
            findings.Fail(fault.what());
        }
    }
    findings.End();
    _exit(EXIT_SUCCESS);
}

}  // namespace tdkplay::check
