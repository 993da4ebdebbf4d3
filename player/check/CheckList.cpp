#include "player/check/CheckList.h"

#include <algorithm>

namespace tdkplay::check {

const std::vector<Check>& AllChecks() {
    static const std::vector<Check> all = {
        {"library", ProbeLibrary, true},
        {"export", ProbeExport, true},
        {"object", ProbeObject, true},
        {"description", ProbeDescription, false},
        {"frames", ProbeFrames, true},
        {"early-calls", ProbeEarlyCalls, false},
        {"reload", ProbeReload, false},
        {"sizes", ProbeSizes, false},
        {"rows", ProbeRows, false},
        {"sounds", ProbeSounds, false},
        {"analysis-frame", ProbeRecord, false},
        {"resize", ProbeResize, false},
        {"start-stop", ProbeStartStop, false},
        {"other-threads", ProbeCallsDuringDraw, false},
        {"two-objects", ProbeTwoObjects, false},
        {"preferences", ProbePreferences, false},
        {"configure", ProbeConfigure, false},
        {"window", ProbeWindow, false},
        {"own-threads", ProbeThreads, false},
        {"process", ProbeProcess, false},
        {"leak-per-frame", ProbeLeakPerFrame, false},
        {"leak-per-start", ProbeLeakPerStart, false},
        {"speed", ProbeSpeed, false},
        {"picture", ProbePicture, false},
        {"flashes", ProbeFlashes, false},
        {"repeatable", ProbeRepeatable, false},
    };
    return all;
}

const Check* FindCheck(const std::string& name) {
    const std::vector<Check>& all = AllChecks();
    const auto found = std::find_if(all.begin(), all.end(), [&name](const Check& check) { return check.Name == name; });
    return found == all.end() ? nullptr : &*found;
}

}  // namespace tdkplay::check
