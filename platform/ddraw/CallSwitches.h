// What a test makes of DirectDraw: calls that fail, surfaces that are lost, rows that are padded. The switches
// themselves are in tdkplatform.h.
#pragma once

#include <windef.h>

namespace tdkp {

// At the start of every call of CoInitialize, CoCreateInstance and the interfaces. Anything but S_OK is to be
// given back at once, with nothing done.
HRESULT CountCall();

// Grows when all surfaces that exist are lost.
uint32_t LossesSoFar();

// Bytes that each row of a new surface gets beyond what it needs.
uint32_t RowPadding();

}  // namespace tdkp
