// All checks in their order, and what one that fails takes away from those behind it.
#pragma once

#include <string>
#include <vector>

#include "player/check/Probes.h"

namespace tdkplay::check {

using Probe = void (*)(ProbeContext&);

struct Check {
    const char* Name;  // for scripts, too: names don't change
    Probe Run;
    // Without it none of the checks behind this one can tell anything; they are skipped.
    bool IsVital;
};

const std::vector<Check>& AllChecks();

// Null if there is none of this name.
const Check* FindCheck(const std::string& name);

}  // namespace tdkplay::check
