// The transform in the middle of the spectrum: 512 samples to 256 coefficients.
#pragma once

#include "src/audio/SpectrumTables.h"

namespace tdkviz {

// Windows and folds 512 `samples`, oldest first, and takes a DCT-IV of the 256 that come of it, through a
// complex FFT of 128 points. `coefficients`, 256 of them, come in the order in which the FFT leaves them:
// entry p is that of band tables.BandAt[p]. Each value goes through the same sums and products on every
// processor, so its bits are the same. Allocates nothing.
void TransformSamples(const SpectrumTables& tables, const float* samples, float* coefficients);

}  // namespace tdkviz
