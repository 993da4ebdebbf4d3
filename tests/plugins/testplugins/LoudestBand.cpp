// Writes into the file that TDKVIZ_TEST_BANDS names, for a test in another process, which band of the left channel is
// the loudest: its number, or -1 in silence.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

#include "tests/plugins/testplugins/TestPlugin.h"

namespace {

void Paint(const viz::Canvas&, const VizAnalysisFrame& frame) {
    static const int file = open(getenv("TDKVIZ_TEST_BANDS"), O_WRONLY | O_CREAT, 0600);
    const auto* const loudest = std::max_element(std::begin(frame.SpectrumLeft), std::end(frame.SpectrumLeft));
    std::array<char, 16> text = {};
    std::snprintf(text.data(), text.size(), "%4d\n", *loudest == 0 ? -1 : int(loudest - frame.SpectrumLeft));
    if (pwrite(file, text.data(), 5, 0) != 5) std::abort();
}

}  // namespace

TEST_PLUGIN(.Name = "Loudest Band", .SaysMask = true, .WantsSpectrum = 1, .Paint = Paint)
