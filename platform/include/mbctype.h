// Lead bytes of the system's multi-byte code page. The layer's code page is single-byte, always.
#pragma once

#include "windef.h"

// Not zero for a byte that begins a double-byte character.
TDKP_API int _ismbblead(unsigned int character);
